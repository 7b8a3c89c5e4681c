"""What a run says: a line for each room, then every survivor as a diff."""

from __future__ import annotations

from dataclasses import dataclass, field

from faults import ChangedLines, Fault
from finding import ROOMS
from trial import Outcome

# Of a hundred faults that a host could notice the tests find so many, in each room.
GOAL = 95.0
# No more of a hundred may be called unnoticeable.
MOST_LISTED = 10.0


@dataclass
class Tally:
    """What came of the faults of a room."""

    outcomes: dict[Outcome, int] = field(default_factory=lambda: {outcome: 0 for outcome in Outcome})
    listed: int = 0
    # Not made, since they remember what is asked for once.
    once: int = 0

    def add(self, outcome: Outcome, listed: bool) -> None:
        """Counts one."""
        if listed and outcome == Outcome.SURVIVED:
            self.listed += 1
        else:
            self.outcomes[outcome] += 1

    @property
    def killed(self) -> int:
        """From outside or inside."""
        return self.outcomes[Outcome.KILLED] + self.outcomes[Outcome.INSIDE]

    @property
    def score(self) -> float:
        """Of a hundred that are not on the list. All of none is all."""
        counted = self.killed + self.outcomes[Outcome.SURVIVED]
        return 100 * self.killed / counted if counted else 100.0

    @property
    def share_listed(self) -> float:
        """How many of a hundred that change the code are on the list."""
        counted = self.killed + self.outcomes[Outcome.SURVIVED] + self.listed
        return 100 * self.listed / counted if counted else 0.0


def table(tallies: dict[str, Tally]) -> str:
    """A line for each room that was tried."""
    lines = [f"{'room':<12}{'killed':>8}{'inside':>8}{'survived':>10}{'listed':>8}{'score':>8}   not faults, once"]
    for room in ROOMS:
        if room in tallies:
            tally = tallies[room]
            none = tally.outcomes[Outcome.SAME] + tally.outcomes[Outcome.INVALID]
            lines.append(
                f"{room:<12}{tally.killed:>8}{tally.outcomes[Outcome.INSIDE]:>8}{tally.outcomes[Outcome.SURVIVED]:>10}"
                f"{tally.listed:>8}{tally.score:>8.1f}   {none}, {tally.once}"
            )
    return "\n".join(lines)


def diff(fault: Fault, changed: ChangedLines) -> str:
    """A survivor, as the list would name it, with its line and what was done."""
    return f"# {fault.file}:{fault.line}: {fault.kind}\n{changed}\n"


def complaints(tallies: dict[str, Tally], whole_rooms: list[str]) -> list[str]:
    """What is wrong with the figures of rooms that were tried as a whole."""
    found = []
    for room in whole_rooms:
        tally = tallies.get(room, Tally())
        if tally.score < GOAL:
            found.append(f"{room}: {tally.score:.1f} of 100 faults are found, and should be {GOAL:.0f}")
        if tally.share_listed >= MOST_LISTED:
            found.append(f"{room}: {tally.share_listed:.1f} of 100 faults are listed as unnoticeable")
    return found
