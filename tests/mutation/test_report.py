"""The figures of a run, and what is wrong with them."""

from __future__ import annotations

import unittest

from faults import ChangedLines, Fault
from report import Tally, complaints, diff, table
from trial import Outcome


def _tally(killed: int, survived: int, listed: int = 0) -> Tally:
    tally = Tally()
    for _ in range(killed):
        tally.add(Outcome.KILLED, False)
    for _ in range(survived):
        tally.add(Outcome.SURVIVED, False)
    for _ in range(listed):
        tally.add(Outcome.SURVIVED, True)
    return tally


class Report(unittest.TestCase):
    def test_the_score_is_of_those_that_a_host_could_notice(self) -> None:
        tally = _tally(killed=18, survived=1, listed=1)
        tally.add(Outcome.INSIDE, False)
        tally.add(Outcome.SAME, False)
        tally.add(Outcome.INVALID, False)
        tally.once = 3
        self.assertEqual(tally.score, 95.0)
        self.assertAlmostEqual(tally.share_listed, 100 / 21)
        self.assertEqual(
            table({"host": tally}).splitlines()[1].split(), ["host", "19", "1", "1", "1", "95.0", "2,", "3"]
        )

    def test_a_room_below_the_goal_and_a_long_list_are_complained_about_where_the_whole_room_was_tried(self) -> None:
        tallies = {"host": _tally(18, 2), "convert": _tally(18, 0, 2), "plugin": _tally(1, 1)}
        said = complaints(tallies, ["host", "convert"])
        self.assertEqual(len(said), 2)
        self.assertIn("host: 90.0 of 100", said[0])
        self.assertIn("convert: 10.0 of 100 faults are listed", said[1])

    def test_a_survivor_can_be_put_on_the_list_as_it_is_printed(self) -> None:
        changed = ChangedLines("host/a.cpp", ("old();",), (";",))
        fault = Fault("host/a.cpp", 0, 6, ";", "statement left out", 7)
        self.assertEqual(diff(fault, changed), "# host/a.cpp:7: statement left out\nhost/a.cpp\n- old();\n+ ;\n")


if __name__ == "__main__":
    unittest.main()
