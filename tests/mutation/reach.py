"""Which test case reaches which lines of the product, and how long it takes: each case is run once, alone, with a library
that notes where it was. What was found is kept until the library or a test program changes."""

from __future__ import annotations

import json
import os
import struct
import subprocess
from bisect import bisect_left
from collections.abc import Callable
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field
from pathlib import Path

from code_lines import line_table, rows_in
from faults import Fault
from finding import ROOMS
from workshop import digest_of


@dataclass
class Case:
    """A test case, by its program and its title."""

    program: str
    title: str
    # Of processor time, which other programs on the machine do not change.
    seconds: float
    # The lines of each file at which a piece of code begins that it ran, and that it ran twice in a life of the library.
    lines: dict[str, set[int]] = field(default_factory=dict)
    again: dict[str, set[int]] = field(default_factory=dict)

    @property
    def size(self) -> int:
        """How much it reaches: the less, the more it is about that."""
        return sum(len(lines) for lines in self.lines.values())

    def reaches(self, fault: Fault) -> bool:
        """Whether it runs the function in which the fault is."""
        if not fault.function:
            return False
        first, last = fault.function
        return any(first <= line <= last for line in self.lines.get(fault.file, ()))

    def nearest(self, fault: Fault) -> int:
        """The last line at or before the fault at which something that it ran begins."""
        return max((line for line in self.lines.get(fault.file, ()) if line <= fault.line), default=0)


def closest(fault: Fault) -> set[str]:
    """The test programs that are about the fault: its room's, and for what is no code that runs those of what is
    registered."""
    own = {f"{fault.room}-tests"}
    return own if fault.function and not fault.at_compile_time else own | {"plugin-tests"}


def cases_for(fault: Fault, cases: list[Case]) -> list[Case]:
    """The cases that may notice the fault, those first that come nearest to it and reach little else. Data, and what the
    compiler reckons, is part of everything; the tests of the room and those of what is registered look at it."""
    reaching = [case for case in cases if case.reaches(fault)]
    if not reaching and (not fault.function or fault.at_compile_time):
        own = closest(fault)
        return sorted(cases, key=lambda case: (case.program not in own, fault.file not in case.lines, case.seconds))
    return sorted(reaching, key=lambda case: (-case.nearest(fault), case.size, case.seconds))


def runs_again(fault: Fault, cases: list[Case]) -> bool:
    """Whether the piece of code in which the fault is runs more than once in one life of the library, in any case."""
    if not fault.function:
        return False
    ran = {line for case in cases for line in case.lines.get(fault.file, ())}
    begins = max((line for line in ran if fault.function[0] <= line <= fault.line), default=0)
    return any(begins in case.again.get(fault.file, ()) for case in cases)


def titles_of(program: Path) -> list[str]:
    """The titles of a program's test cases."""
    lines = subprocess.run([program, "-ltc"], check=True, capture_output=True, text=True).stdout.splitlines()
    bars = [i for i, line in enumerate(lines) if line.startswith("=====")]
    return lines[bars[0] + 1 : bars[-1]]


def chosen(titles: list[str]) -> str:
    """doctest's option for these titles."""
    return "-tc=" + ",".join(title.replace("\\", "\\\\").replace(",", "\\,") for title in titles)


def measure(
    tree: Path, library: Path, programs: list[Path], kept: Path, jobs: int, say: Callable[[str], None]
) -> list[Case]:
    """The cases of these programs; from `kept` when nothing changed since that was written."""
    digest = digest_of([library, *programs])
    known = json.loads(kept.read_text("utf-8")) if kept.exists() else {}
    if known.get("of") != digest:
        say("finding out which test reaches what")
        known = {"of": digest, "cases": _run_all(tree, library, programs, jobs)}
        if not any(case["lines"] for case in known["cases"]):
            raise SystemExit("mutate: no test reaches a line of the product")
        kept.write_text(json.dumps(known), "utf-8")
    return [
        Case(case["program"], case["title"], case["seconds"], _sets(case["lines"]), _sets(case["again"]))
        for case in known["cases"]
    ]


def _sets(lines: dict[str, list[int]]) -> dict[str, set[int]]:
    return {file: set(at) for file, at in lines.items()}


def _run_all(tree: Path, library: Path, programs: list[Path], jobs: int) -> list[dict[str, object]]:
    work = [(program, title) for program in programs for title in titles_of(program)]
    with ThreadPoolExecutor(jobs) as pool:
        runs = list(pool.map(lambda one: _run(library, one[0], one[1], work.index(one)), work))
    places = _lines_at(tree, library, sorted({offset for _, marks in runs for offset in marks}))
    found = []
    for (program, title), (seconds, marks) in zip(work, runs):
        lines = _lines(places, list(marks))
        again = _lines(places, [offset for offset, mark in marks.items() if mark > 1])
        found.append({"program": program.name, "title": title, "seconds": seconds, "lines": lines, "again": again})
    return found


def _lines(places: dict[int, tuple[str, int]], offsets: list[int]) -> dict[str, list[int]]:
    lines: dict[str, set[int]] = {}
    for offset in offsets:
        if offset in places:
            lines.setdefault(places[offset][0], set()).add(places[offset][1])
    return {file: sorted(at) for file, at in lines.items()}


def _run(library: Path, program: Path, title: str, number: int) -> tuple[float, dict[int, int]]:
    """How long a case takes, and the recorder's mark for each offset of code that it ran."""
    marks = library.parent / f"reach-{number}"
    command = [str(program), "--plugin", str(library), chosen([title])]
    environment = {**os.environ, "SPOTLIGHT_REACH": str(marks)}
    with open(os.devnull, "wb") as nowhere:
        process = os.posix_spawn(
            command[0], command, environment, file_actions=[(os.POSIX_SPAWN_DUP2, nowhere.fileno(), 1)]
        )
        _, status, used = os.wait4(process, 0)
    if status != 0:
        raise SystemExit(f"mutate: a test fails without any fault: {title}")
    seconds = used.ru_utime + used.ru_stime
    noted = marks.read_bytes() if marks.exists() else b""
    marks.unlink(missing_ok=True)
    count = len(noted) // 5
    offsets = struct.unpack(f"<{count}I", noted[count:])
    return seconds, {offset: mark for mark, offset in zip(noted, offsets) if mark}


def _lines_at(tree: Path, library: Path, offsets: list[int]) -> dict[int, tuple[str, int]]:
    """The file and line of the code at these offsets, where it is the product's own: the first line behind each, since
    what counts has none."""
    rows = sorted(rows_in(line_table(library), tree))
    found = {}
    for offset in offsets:
        place = bisect_left(rows, (offset, "", 0))
        if place < len(rows) and rows[place][1].split("/")[0] in ROOMS:
            found[offset] = rows[place][1:]
    return found
