"""Counts the instructions of the plugin and of its floor, operation by operation, and says how they compare.

    floor.py RELEASE LIBRARY [--once] [--page FILE --picture FILE] [GROUP...]

RELEASE is the folder of the optimised build, LIBRARY the one that ships. The tables say for each operation what it
costs beside its floor: with all that it calls, and of the plugin's own code alone.
"""

from __future__ import annotations

import argparse
import math
import os
import subprocess
import sys
import tempfile
from dataclasses import dataclass
from pathlib import Path

import callgrind
import picture

GOAL = 1.05
GROWTH_GOAL = 10.5
GROUPS = ("start", "calls", "strings", "results", "lists", "variants")
# Asked for twice by design: hosts that build strings in any encoding are asked for a string's CFString again.
_MOST_REQUESTS = {"old": 1, "new": 2}
_ALLOCATIONS = ("malloc", "calloc", "realloc", "operator new")
_COMPILERS_CHOICE = ("memset", "memcpy", "strlen", "bzero", "pthread_self")
_BUILDS = ("native", "shipping")


@dataclass(frozen=True)
class Key:
    group: str
    operation: str
    size: int


@dataclass
class Cost:
    """Instructions of one call: with all that it calls, and of the code itself."""

    whole: float
    own: float
    calls: dict[str, float]
    allocations: int


@dataclass
class Row:
    key: Key
    on_stack: bool
    # By build, host ("old" or "new") and side ("plugin" or "floor").
    costs: dict[tuple[str, str, str], Cost]

    def ratio(self, build: str, what: str = "whole") -> float:
        """The worse one of those on an old host and on a new one."""
        return max(
            getattr(self.costs[build, host, "plugin"], what) / max(1, getattr(self.costs[build, host, "floor"], what))
            for host in self.hosts()
        )

    def hosts(self) -> list[str]:
        """The largest sizes are counted on a new one alone."""
        return [host for host in ("old", "new") if (_BUILDS[0], host, "floor") in self.costs]


def strip(release: Path, into: Path) -> None:
    """Copies of what is run without debugging information, which valgrind cannot read in the form that it has."""
    for file in [release / "bin/bench-floor", *sorted((release / "lib").glob("*.so"))]:
        subprocess.run(["llvm-objcopy-14", "--strip-debug", file, into / file.name], check=True)


def run(folder: Path, name: str, library: Path, largest: int, groups: list[str]) -> subprocess.Popen:
    """Starts the program under callgrind; its counts come as files in a folder of that name."""
    (folder / name).mkdir()
    command = ["valgrind", "--quiet", "--tool=callgrind", "--instr-atstart=no",
               f"--callgrind-out-file={folder / name / 'count'}", folder / "bench-floor", library, str(largest), *groups]
    return subprocess.Popen(command, env={**os.environ, "LD_LIBRARY_PATH": str(folder)}, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE, text=True)


def cost_of(count: callgrind.Count, times: int) -> Cost:
    # The C library's own names are not all known, and which of its functions a compiler uses is its own affair.
    calls = {called: number / times for called, number in count.calls.items()
             if number and not called.startswith("0x") and called not in _COMPILERS_CHOICE}
    allocations = sum(number for called, number in count.calls.items() if called.startswith(_ALLOCATIONS))
    return Cost(count.whole / times, count.own / times, calls, allocations)


def collect(folder: Path) -> dict[Key, Row]:
    rows: dict[Key, Row] = {}
    for build in _BUILDS:
        for path in sorted((folder / build).glob("count.*"), key=lambda path: int(path.suffix[1:])):
            count = callgrind.read(path)
            if not count.label:
                continue
            group, operation, size, host, side, times, stack = count.label.split("|")
            key = Key(group, operation, int(size))
            row = rows.setdefault(key, Row(key, stack == "stack", {}))
            cost = cost_of(count, int(times))
            before = row.costs.get((build, host, side))
            if not before or cost.whole < before.whole:
                row.costs[build, host, side] = cost
    return rows


def growth(rows: dict[Key, Row], row: Row) -> tuple[float, float] | None:
    """How much more the plugin costs for ten times the work, from the next smaller size on, and how much that would be
    if the floor's cost grew as the work does; the worse of the builds."""
    smaller = [key for key in rows if (key.group, key.operation) == (row.key.group, row.key.operation)
               and 0 < key.size * 10 <= row.key.size]
    if not smaller:
        return None
    before = rows[max(smaller, key=lambda key: key.size)]
    tenfolds = math.log10(row.key.size / before.key.size)

    def grown(build: str, host: str, side: str) -> float:
        return (row.costs[build, host, side].whole / before.costs[build, host, side].whole) ** (1 / tenfolds)

    pairs = [(build, host) for build in _BUILDS for host in row.hosts()]
    return (max(grown(*pair, "plugin") for pair in pairs),
            max(10 * grown(*pair, "plugin") / grown(*pair, "floor") for pair in pairs))


def _place(rows: dict[Key, Row], key: Key) -> tuple[int, int, int]:
    """Sizes of one operation stand together, operations in the order in which they were first counted."""
    operations = list(dict.fromkeys((other.group, other.operation) for other in rows))
    return GROUPS.index(key.group), operations.index((key.group, key.operation)), key.size


def faults(rows: dict[Key, Row]) -> list[str]:
    """What makes a comparison worth nothing, or breaks a promise: other calls than the floor's, memory that is asked
    for where the stack is promised."""
    found = []
    for row in rows.values():
        for (build, host, side), cost in row.costs.items():
            name = f"{row.key.operation} {row.key.size or ''} ({build}, {host} host)"
            if side == "plugin" and cost.calls != row.costs[build, host, "floor"].calls:
                floor = row.costs[build, host, "floor"].calls
                differing = sorted(call for call in {*cost.calls, *floor} if cost.calls.get(call) != floor.get(call))
                found.append(f"{name} makes other calls than its floor: "
                             + ", ".join(f"{call} {cost.calls.get(call, 0):g} for {floor.get(call, 0):g}"
                                         for call in differing))
            if side == "plugin" and row.on_stack and cost.allocations:
                found.append(f"{name} asks for memory {cost.allocations} times")
    return found


HEADING = ("operation", "size", "floor", "native", "ships", "own code", "growth")


def table(rows: dict[Key, Row]) -> list[tuple[str, ...]]:
    lines = []
    for row in rows.values():
        grown = growth(rows, row)
        lines.append((
            row.key.operation,
            f"{row.key.size:,}" if row.key.size else "",
            f"{row.costs['shipping', 'new', 'floor'].whole:,.0f}",
            f"{row.ratio('native'):.3f}",
            f"{row.ratio('shipping'):.3f}",
            f"{row.ratio('shipping', 'own'):.2f}",
            f"{grown[0]:.2f}" if grown else "",
        ))
    return lines


def page_table(lines: list[tuple[str, ...]]) -> str:
    rule = "|---|" + "--:|" * (len(HEADING) - 1)
    return "\n".join([f"| {' | '.join(HEADING)} |", rule, *(f"| {' | '.join(line)} |" for line in lines)])


def print_table(lines: list[tuple[str, ...]]) -> None:
    widths = [max(len(line[i]) for line in [HEADING, *lines]) for i in range(len(HEADING))]
    for line in [HEADING, *lines]:
        print(line[0].ljust(widths[0]), *(cell.rjust(width) for cell, width in zip(line[1:], widths[1:])), sep="  ")


def summary(rows: dict[Key, Row]) -> str:
    within = [row for row in rows.values() if max(row.ratio(build) for build in _BUILDS) <= GOAL + 0.0005]
    text = f"{len(within)} of {len(rows)} rows are within {GOAL} times their floor"
    beyond = [grown[1] for row in rows.values() if (grown := growth(rows, row))]
    if not beyond:
        return text
    return f"{text}; beside its floor, ten times the work costs at most {max(beyond):.2f} times as much (goal {GROWTH_GOAL})"


def picture_rows(rows: dict[Key, Row]) -> list[tuple[str, dict[str, float]]]:
    """One for each operation: its worst size."""
    worst: dict[str, dict[str, float]] = {}
    for row in rows.values():
        series = worst.setdefault(row.key.operation, dict.fromkeys(_BUILDS, 0.0))
        for build in _BUILDS:
            series[build] = max(series[build], row.ratio(build))
    return list(worst.items())


def main() -> int:
    parser = argparse.ArgumentParser(add_help=False)
    parser.add_argument("release", type=Path)
    parser.add_argument("library", type=Path)
    parser.add_argument("groups", nargs="*")
    parser.add_argument("--once", action="store_true")
    parser.add_argument("--page", type=Path)
    parser.add_argument("--picture", type=Path)
    given = parser.parse_args()
    largest = 100 if given.once else 1_000_000
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        strip(given.release, folder)
        libraries = {"native": folder / "Spotlight.so", "shipping": given.library.resolve()}
        running = {build: run(folder, build, library, largest, given.groups) for build, library in libraries.items()}
        problems = []
        for build, process in running.items():
            said, errors = process.communicate()
            if process.returncode:
                sys.exit(f"bench-floor failed with the {build} build: {errors or said}")
            for line in said.split():
                _, host, most = line.split("|")
                if int(most) > _MOST_REQUESTS[host]:
                    problems.append(f"the {build} build asks an {host} host {most} times for one service")
        rows = collect(folder)
    rows = dict(sorted(rows.items(), key=lambda item: _place(rows, item[0])))
    lines = table(rows)
    print_table(lines)
    print()
    print(summary(rows))
    problems += faults(rows)
    for problem in problems:
        print("fault:", problem)
    if given.page:
        picture.draw(given.picture, "Instructions, the floor being 1", picture_rows(rows), GOAL)
        picture.put_into_page(given.page, "floor", page_table(lines) + "\n\n" + summary(rows) + ".")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
