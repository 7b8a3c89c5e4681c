"""What a run of the tests comes to, for a glance: a line for each room, what tests told of how much they tried, and what
to run again.

summary.py LIST RESULTS: LIST is the list of tests in the build tree (room, file, targets, ctest's name), RESULTS what
`ctest --output-junit` wrote.
"""

from __future__ import annotations

import sys
from dataclasses import dataclass, field
from pathlib import Path
from xml.etree import ElementTree


@dataclass
class Room:
    """The tests of one room that ran. `again` has the names by which ./dev test knows those that failed."""

    passed: int = 0
    failed: int = 0
    seconds: float = 0.0
    again: dict[str, None] = field(default_factory=dict)

    def add(self, other: Room) -> None:
        """Counts those of another room, too."""
        self.passed += other.passed
        self.failed += other.failed
        self.seconds += other.seconds
        self.again |= other.again


def rooms(test_list: str, results: str) -> dict[str, Room]:
    """The rooms of which a test ran, in the list's order."""
    places = {}
    found: dict[str, Room] = {}
    for line in test_list.splitlines():
        room, file, _, name = line.split("\t")
        places[name] = (room, file)
        found.setdefault(room, Room())
    for case in ElementTree.fromstring(results).iter("testcase"):
        room, file = places.get(case.get("name", ""), ("others", case.get("name", "")))
        passed = case.get("status") == "run"
        again = {} if passed else {file: None}
        found.setdefault(room, Room()).add(Room(passed, not passed, float(case.get("time", "0")), again))
    return {name: room for name, room in found.items() if room.passed or room.failed}


def report(found: dict[str, Room]) -> str:
    """One line a room and one for all, then how to run the failed ones again."""
    width = max(len(name) for name in [*found, "room"]) + 2
    everything = Room()
    for room in found.values():
        everything.add(room)
    lines = [f"{'room':<{width}}passed  failed  seconds"]
    for name, room in [*found.items(), ("all", everything)]:
        lines.append(f"{name:<{width}}{room.passed:6}{room.failed:8}{room.seconds:9.1f}")
    if everything.again:
        lines.append(f"again: ./dev test {' '.join(everything.again)}")
    return "\n".join(lines)


def told(results: str) -> list[str]:
    """What tests said they executed: their lines that begin with that word."""
    lines = []
    for output in ElementTree.fromstring(results).iter("system-out"):
        lines += [line for line in (output.text or "").splitlines() if line.startswith("executed: ")]
    return lines


def main(test_list: str, results: str) -> None:
    print(report(rooms(test_list, results)))
    for line in told(results):
        print(line)


if __name__ == "__main__":
    main(Path(sys.argv[1]).read_text("utf-8"), Path(sys.argv[2]).read_text("utf-8"))
