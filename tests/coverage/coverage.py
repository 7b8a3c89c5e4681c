"""How much of each room of the product the tests reach, and whether that is enough.

coverage.py TREE SUMMARY: TREE is where the sources are, SUMMARY what `llvm-cov export --summary-only` says of them.
Exits with 1 when the product as a whole is below a floor.
"""

from __future__ import annotations

import json
import os
import sys
from collections import defaultdict
from pathlib import Path

ROOMS = ("plugin", "host", "convert", "spotlight")
# In percent, of the four rooms together. Raise them when more is reached; what is left has a reason in its test.
FLOORS = {"lines": 97.0, "branches": 97.0}


class Share:
    """So much of so much."""

    def __init__(self) -> None:
        self.covered = 0
        self.count = 0

    def add(self, covered: int, count: int) -> None:
        """Counts more of both."""
        self.covered += covered
        self.count += count

    @property
    def percent(self) -> float:
        """All of nothing is all."""
        return 100 * self.covered / self.count if self.count else 100.0

    def __str__(self) -> str:
        return f"{self.percent:6.2f} % of {self.count}"


def shares(tree: Path, summary: object) -> dict[str, dict[str, Share]]:
    """The shares of each room that has sources, and of "all" of them, by what is counted."""
    found: dict[str, dict[str, Share]] = defaultdict(lambda: {what: Share() for what in FLOORS})
    for file in summary["data"][0]["files"]:
        path = Path(os.path.normpath(file["filename"]))  # a compiler cache names it by way of the build folder
        room = path.relative_to(tree).parts[0] if path.is_relative_to(tree) else ""
        if room in ROOMS:
            for name in (room, "all"):
                for what, share in found[name].items():
                    share.add(file["summary"][what]["covered"], file["summary"][what]["count"])
    return found


def report(found: dict[str, dict[str, Share]]) -> str:
    """One line a room."""
    lines = [f"{'room':<12}{'lines':<22}branches"]
    for room in (*ROOMS, "all"):
        if room in found:
            lines.append(f"{room:<12}{str(found[room]['lines']):<22}{found[room]['branches']}")
    return "\n".join(lines)


def complaints(found: dict[str, dict[str, Share]]) -> list[str]:
    """One sentence for each room without a count and each floor that the product is below."""
    sentences = [f"nothing of {room} was counted" for room in ROOMS if room not in found]
    for what, floor in FLOORS.items():
        if "all" in found and found["all"][what].percent < floor:
            sentences.append(f"{found['all'][what].percent:.2f} % of the {what} are below the floor, {floor:.2f} %")
    return sentences


def main(tree: str, summary: str) -> int:
    """Prints the report and what is wrong with it."""
    found = shares(Path(tree), json.loads(Path(summary).read_text("utf-8")))
    print(report(found))
    wrong = complaints(found)
    for sentence in wrong:
        print(sentence, file=sys.stderr)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
