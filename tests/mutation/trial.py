"""Trying a fault: the library with it is made, and tests are run until one fails."""

from __future__ import annotations

import os
import re
import subprocess
from dataclasses import dataclass
from enum import Enum
from pathlib import Path

from faults import Fault
from reach import Case, cases_for, chosen, closest
from workshop import Workshop

# So many cases are run before it is looked whether the fault makes any difference at all; those that take longer than
# so many seconds are run last. Of processor time a fault has so much: what runs at every start is reached by every test,
# and those of the room and those that come nearest are enough. What they miss counts as a survivor.
_FIRST = 16
_LONG = 0.25
_MOST = 4.0
_AGAIN = re.compile(r"^again: .* -tc='(.*)'$", re.MULTILINE)
_QUIET = {"ASAN_OPTIONS": "symbolize=0", "UBSAN_OPTIONS": "symbolize=0"}


class Outcome(Enum):
    """What came of a fault."""

    KILLED = "killed"
    INSIDE = "killed from inside"
    SURVIVED = "survived"
    SAME = "same code"
    INVALID = "does not compile"


@dataclass
class Verdict:
    """The outcome, and the title of the case that noticed, as doctest's option takes it, if one did by itself."""

    outcome: Outcome
    killer: str = ""


class Court:
    """Tries faults with the test programs of build/asan."""

    def __init__(self, workshop: Workshop, cases: list[Case], killers: dict[str, str]) -> None:
        self._workshop = workshop
        self._cases = cases
        # Which case noticed a fault the last time, by what the fault changes: it is run first.
        self._killers = killers

    def tried(self, fault: Fault, folder: Path) -> Verdict:
        """Tries one fault. The folder is the worker's own."""
        made = self._workshop.compile_fault(fault, folder)
        if not made:
            return Verdict(Outcome.INVALID)
        library = self._workshop.link_library(made, folder)
        last = self._last_killer(fault)
        cases = cases_for(fault, self._cases)
        first = [case for case in self._cases if case.title == last] or [case for case in cases if case.seconds <= _LONG][:_FIRST]
        for batch in (first, *_rest(cases, first, closest(fault))):
            failed, killer = self._fails(batch, library)
            if failed:
                return Verdict(Outcome.KILLED, killer)
            if batch is first and self._workshop.makes_the_same_code(fault, folder):
                return Verdict(Outcome.SAME)
        program = self._workshop.link_inside_tests(made, folder)
        if self._run([str(program), "--abort-after=1"], 10).returncode != 0:
            return Verdict(Outcome.INSIDE)
        return Verdict(Outcome.SURVIVED)

    def _last_killer(self, fault: Fault) -> str:
        return self._killers.get(str(fault.changed_lines(self._workshop.tree)), "")

    def _fails(self, cases: list[Case], library: Path) -> tuple[bool, str]:
        """Whether one of these fails, and which. The programs are run in the order in which the cases want them."""
        for name in dict.fromkeys(case.program for case in cases):
            mine = [case for case in cases if case.program == name]
            program = self._workshop.build / "bin" / name
            titles = chosen([case.title for case in mine])
            command = [str(program), "--plugin", str(library), "--abort-after=1", titles]
            ran = self._run(command, 3 + 3 * sum(case.seconds for case in mine))
            if ran.returncode != 0:
                said = _AGAIN.findall(ran.stdout.decode(errors="replace"))
                return True, next((case.title for case in mine if said and _same(case.title, said[-1])), "")
        return False, ""

    def _run(self, command: list[str], seconds: float) -> subprocess.CompletedProcess[bytes]:
        """Runs tests for at most so many seconds of processor time: what takes longer than it ever did is noticed, too.
        What they write when they fail goes where nobody looks."""
        limited = ["prlimit", f"--cpu={int(seconds) + 1}", "--core=0", *command]
        environment = {**os.environ, **_QUIET}
        try:
            return subprocess.run(
                limited,
                cwd=self._workshop.work,
                env=environment,
                capture_output=True,
                check=False,
                timeout=60 + 20 * seconds,
            )
        except subprocess.TimeoutExpired:
            return subprocess.CompletedProcess(command, 1, b"", b"")


def _rest(cases: list[Case], first: list[Case], own: set[str]) -> tuple[list[Case], list[Case]]:
    """What is run behind the first ones: all short ones of its own programs, as many long ones of these as a fault has
    time for, and as many of the others. Short ones come before long ones."""
    short: list[Case] = []
    long: list[Case] = []
    left = {True: _MOST, False: _MOST}
    for batch, wanted in ((short, False), (long, True)):
        for case in cases:
            is_own = case.program in own
            seconds = 0.0 if is_own and not wanted else case.seconds
            if case not in first and (case.seconds > _LONG) == wanted and seconds <= left[is_own]:
                left[is_own] -= seconds
                batch.append(case)
    return short, long


def _same(title: str, pattern: str) -> bool:
    """Whether the pattern is what the test program makes of the title for a shell."""
    return re.sub(r"[,'\\]", "?", title) == pattern
