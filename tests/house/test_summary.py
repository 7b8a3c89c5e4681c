"""The summary of a run of the tests counts every test in its room, and names what to run again."""

from __future__ import annotations

import unittest

import summary

_LIST = """plugin\tstart_up\tplugin-tests\tplugin start_up: native
plugin\tstart_up\tplugin-tests\tplugin start_up: shipping
convert\tdates\tconvert-tests\tconvert dates: native
house\tdev\t\thouse: dev
"""


def _results(*cases: tuple[str, str]) -> str:
    rows = "".join(f'<testcase name="{name}" time="1.25" status="{status}"/>' for name, status in cases)
    return f'<testsuite name="Linux-c++">{rows}</testsuite>'


class Summary(unittest.TestCase):
    def _lines(self, *cases: tuple[str, str]) -> list[str]:
        return summary.report(summary.rooms(_LIST, _results(*cases))).splitlines()

    def test_each_room_of_which_a_test_ran_has_its_line_and_all_of_them_together(self) -> None:
        ran = [("convert dates: native", "run"), ("plugin start_up: native", "run"), ("plugin start_up: shipping", "run")]
        self.assertEqual(
            self._lines(*ran),
            [
                "room     passed  failed  seconds",
                "plugin        2       0      2.5",
                "convert       1       0      1.2",
                "all           3       0      3.8",
            ],
        )

    def test_a_file_that_fails_on_both_artifacts_is_named_once(self) -> None:
        failed = [("plugin start_up: native", "fail"), ("plugin start_up: shipping", "fail"), ("house: dev", "run")]
        self.assertEqual(self._lines(*failed)[-2:], ["all          1       2      3.8", "again: ./dev test start_up"])

    def test_what_a_test_says_that_it_executed_is_repeated(self) -> None:
        output = "test_one ... executed: nothing, being in the middle\nexecuted: 3 programs\nok\n"
        case = f'<testcase name="a" time="1" status="run"><system-out>{output}</system-out></testcase>'
        self.assertEqual(summary.told(f"<testsuite>{case}{case}</testsuite>"), ["executed: 3 programs"] * 2)

    def test_a_test_that_is_on_no_list_counts_too(self) -> None:
        self.assertIn("others       0       1      1.2", self._lines(("new one", "fail")))


if __name__ == "__main__":
    unittest.main()
