"""Trying a fault: what is run in which order, and what follows from it. The workshop and the test programs are made up."""

from __future__ import annotations

import subprocess
import unittest
from pathlib import Path

from faults import Fault
from reach import Case
from trial import Court, Outcome
from workshop import Made

_FAULT = Fault("host/a.cpp", 0, 1, "", "a kind", 12, (10, 20))


class MadeUpWorkshop:
    """Makes what it is told to make."""

    tree = Path(__file__).resolve().parent
    build = Path("build")

    def __init__(self, compiles: bool = True, same: bool = False) -> None:
        self._compiles = compiles
        self._same = same

    def compile_fault(self, _fault: Fault, _folder: Path) -> Made | None:
        return Made([], []) if self._compiles else None

    def link_library(self, _made: Made, folder: Path) -> Path:
        return folder / "library"

    def link_inside_tests(self, _made: Made, folder: Path) -> Path:
        return folder / "inside"

    def makes_the_same_code(self, _fault: Fault, _folder: Path) -> bool:
        return self._same


class MadeUpCourt(Court):
    """Notes what it runs; what has one of some words in its command fails."""

    def __init__(self, workshop: MadeUpWorkshop, cases: list[Case], failing: str = "none") -> None:
        super().__init__(workshop, cases, {})  # type: ignore[arg-type]
        self._failing = failing
        self.ran: list[str] = []

    def _last_killer(self, _fault: Fault) -> str:
        return ""

    def _run(self, command: list[str], seconds: float) -> subprocess.CompletedProcess[bytes]:
        self.ran.append(" ".join(command))
        failed = self._failing in self.ran[-1]
        said = f"again:     tests -tc='{self._failing}'\n" if failed else ""
        return subprocess.CompletedProcess(command, int(failed), said.encode(), b"")


def _cases(count: int) -> list[Case]:
    return [Case("host-tests", f"case {i}", i / 1000, {"host/a.cpp": {11}}) for i in range(10, 10 + count)]


class Trial(unittest.TestCase):
    def test_the_first_failure_ends_it_and_its_case_is_known(self) -> None:
        court = MadeUpCourt(MadeUpWorkshop(), _cases(20), "case 11")
        verdict = court.tried(_FAULT, Path("job"))
        self.assertEqual((verdict.outcome, verdict.killer), (Outcome.KILLED, "case 11"))
        self.assertEqual(len(court.ran), 1)

    def test_a_survivor_was_tried_by_all_short_cases_and_from_inside(self) -> None:
        court = MadeUpCourt(MadeUpWorkshop(), _cases(20))
        self.assertEqual(court.tried(_FAULT, Path("job")).outcome, Outcome.SURVIVED)
        self.assertIn("case 29", court.ran[1])
        self.assertIn("inside", court.ran[2])

    def test_cases_that_take_long_come_last(self) -> None:
        cases = [Case("host-tests", "long", 2, {"host/a.cpp": {12}}), *_cases(20)]
        court = MadeUpCourt(MadeUpWorkshop(), cases)
        court.tried(_FAULT, Path("job"))
        self.assertNotIn("long", court.ran[0] + court.ran[1])
        self.assertIn("long", court.ran[2])

    def test_what_takes_more_time_than_a_fault_has_is_not_run(self) -> None:
        court = MadeUpCourt(MadeUpWorkshop(), [Case("host-tests", "endless", 9, {"host/a.cpp": {12}}), *_cases(20)])
        self.assertEqual(court.tried(_FAULT, Path("job")).outcome, Outcome.SURVIVED)
        self.assertNotIn("endless", "".join(court.ran))

    def test_of_its_own_programs_all_short_cases_are_run_and_long_ones_however_many_others_there_are(self) -> None:
        others = [Case("convert-tests", f"other {i}", 0.2, {"host/a.cpp": {12}}) for i in range(10, 60)]
        own = [Case("plugin-tests", "registered", 2, {"host/a.cpp": {12}})]
        court = MadeUpCourt(MadeUpWorkshop(), [*others, *own, *_cases(20)])
        court.tried(Fault("host/a.cpp", 0, 1, "", "a kind", 12), Path("job"))
        ran = "".join(court.ran)
        self.assertIn("registered", ran)
        self.assertIn("case 29", ran)
        self.assertNotIn("other 59", ran)

    def test_what_only_a_test_from_inside_notices_is_counted_apart(self) -> None:
        court = MadeUpCourt(MadeUpWorkshop(), _cases(1), "inside")
        self.assertEqual(court.tried(_FAULT, Path("job")).outcome, Outcome.INSIDE)

    def test_what_does_not_compile_or_makes_the_same_code_is_no_fault(self) -> None:
        for workshop, outcome in (
            (MadeUpWorkshop(compiles=False), Outcome.INVALID),
            (MadeUpWorkshop(same=True), Outcome.SAME),
        ):
            self.assertEqual(MadeUpCourt(workshop, _cases(20)).tried(_FAULT, Path("job")).outcome, outcome)


if __name__ == "__main__":
    unittest.main()
