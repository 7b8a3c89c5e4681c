"""Which test cases are run for a fault, and in which order."""

from __future__ import annotations

import unittest

from faults import Fault
from reach import Case, cases_for, chosen, closest, runs_again


def _fault(function: tuple[int, int] | None, line: int = 12, at_compile_time: bool = False) -> Fault:
    return Fault("host/a.cpp", 0, 1, "", "a kind", line, function, at_compile_time)


class Reach(unittest.TestCase):
    def test_only_cases_that_run_the_function_are_asked(self) -> None:
        inside = Case("host-tests", "inside", 1, {"host/a.cpp": {11}})
        elsewhere = Case("host-tests", "elsewhere", 1, {"host/a.cpp": {30}, "host/b.cpp": {11}})
        self.assertEqual(cases_for(_fault((10, 20)), [elsewhere, inside]), [inside])

    def test_the_case_that_comes_nearest_and_reaches_little_else_is_first(self) -> None:
        passes_by = Case("host-tests", "passes by", 1, {"host/a.cpp": {10}})
        wide = Case("host-tests", "wide", 1, {"host/a.cpp": {10, 12}, "host/b.cpp": {1, 2, 3}})
        narrow = Case("host-tests", "narrow", 9, {"host/a.cpp": {10, 12}})
        self.assertEqual(cases_for(_fault((10, 20)), [passes_by, wide, narrow]), [narrow, wide, passes_by])

    def test_data_may_be_part_of_every_case_and_those_that_run_its_file_are_first_the_quickest_first(self) -> None:
        slow = Case("host-tests", "slow", 2, {"host/a.cpp": {30}})
        quick = Case("host-tests", "quick", 1, {"host/a.cpp": {40}})
        # What a table leads to may stand in another file.
        other = Case("host-tests", "other", 0, {"host/b.cpp": {12}})
        self.assertEqual(cases_for(_fault(None), [slow, other, quick]), [quick, slow, other])

    def test_what_no_case_is_seen_in_is_asked_of_all_if_the_compiler_may_have_run_it(self) -> None:
        case = Case("host-tests", "other", 0, {"host/b.cpp": {12}})
        self.assertEqual(cases_for(_fault((10, 20), at_compile_time=True), [case]), [case])
        self.assertEqual(cases_for(_fault((10, 20)), [case]), [])

    def test_data_is_the_business_of_its_room_and_of_what_is_registered(self) -> None:
        self.assertEqual(closest(_fault(None)), {"host-tests", "plugin-tests"})
        self.assertEqual(closest(_fault((10, 20), at_compile_time=True)), {"host-tests", "plugin-tests"})
        self.assertEqual(closest(_fault((10, 20))), {"host-tests"})

    def test_a_function_may_run_again_in_a_part_of_it(self) -> None:
        cases = [
            Case("host-tests", "a start", 1, {"host/a.cpp": {10, 12, 30}}),
            Case("host-tests", "a second start", 1, {"host/a.cpp": {10, 12}}, {"host/a.cpp": {10}}),
        ]
        self.assertTrue(runs_again(_fault((10, 20), line=11), cases))
        self.assertFalse(runs_again(_fault((10, 20), line=12), cases))
        self.assertFalse(runs_again(_fault((10, 20), line=19), cases))
        self.assertFalse(runs_again(_fault(None), cases))

    def test_titles_with_commas_stay_one_title(self) -> None:
        self.assertEqual(chosen(["One, two", "a \\ b"]), "-tc=One\\, two,a \\\\ b")


if __name__ == "__main__":
    unittest.main()
