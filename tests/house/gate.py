"""The gate: every command of ./dev does its work.

gate.py [TREE]: makes each trial of dev.commands that must succeed, in a copy of the tree (this one, if none is named) at a
path with a blank, called from another folder, without a terminal and in one. A trial fails, too, when it changes a source
or anything in the folder that it was called from. The copy stays in build/gate, so that the next run builds only what
changed, and what the linter found nothing in is known to both. A few are made once more at a path with an apostrophe:
ninja does not understand what compilers say of files there, and builds everything anew each time. What must be refused is tried by test_commands.py, which is one of the tests that ./dev test
runs.
"""

from __future__ import annotations

import hashlib
import re
import shutil
import subprocess
import sys
import time
from dataclasses import dataclass
from pathlib import Path

_HOME = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(_HOME / "tests" / "support"))

import command_table  # noqa: E402
import commit_subjects  # noqa: E402
import made_up_sdk  # noqa: E402
import outside  # noqa: E402

_NOT_SOURCES = {"build", "dist", ".git", "__pycache__"}
_BADLY_FORMATTED = "int  main( ) {return 0 ;}\n"
_WITH_AN_APOSTROPHE = ("run", "build", "package", "format", "check-sdk", "help")
_TESTS = re.compile(r"^\d+% tests passed, (\d+) tests? failed out of (\d+)$", re.MULTILINE)


def _sources(tree: Path) -> dict[str, Path]:
    """The files of a tree that are not made by building, by their place in it."""
    found = {}
    pending = [tree]
    while pending:
        for path in pending.pop().iterdir():
            if path.name in _NOT_SOURCES:
                continue
            if path.is_dir() and not path.is_symlink():
                pending.append(path)
            else:
                found[str(path.relative_to(tree))] = path
    return found


def _copy(tree: Path, copy: Path) -> None:
    """Makes the copy's sources those of the tree. What did not change keeps its date, what was built there stays."""
    copy.mkdir(parents=True, exist_ok=True)
    wanted = _sources(tree)
    present = _sources(copy)
    for place in present.keys() - wanted.keys():
        present[place].unlink()
    for place, path in wanted.items():
        if place not in present or path.read_bytes() != present[place].read_bytes():
            (copy / place).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(path, copy / place)


def _share(folder: Path, place: Path) -> None:
    """Makes the folder the same one as that of the copy."""
    folder.mkdir(parents=True, exist_ok=True)
    place.parent.mkdir(parents=True, exist_ok=True)
    if not place.is_symlink():
        place.symlink_to(folder)


def _contents(folder: Path) -> dict[str, str]:
    return {place: hashlib.sha256(path.read_bytes()).hexdigest() for place, path in _sources(folder).items()}


@dataclass
class Outcome:
    """How one trial went; complaint is empty when all is well."""

    trial: str
    seconds: float
    complaint: str
    said: str


class Gate:
    """The trials of a tree and what came of them."""

    def __init__(self, tree: Path, name: str) -> None:
        work = tree / "build" / "gate"
        self._copy = work / name
        self._caller = work / "another folder"
        sdk = work / "an SDK"
        _copy(tree, self._copy)
        _share(tree / "build" / "linted", self._copy / "build" / "linted")
        for folder in (self._caller, sdk):
            shutil.rmtree(folder, ignore_errors=True)
        made_up_sdk.lay_out(tree, sdk)
        # A place that the tree has too: a command that takes the caller's folder for its own shows itself here.
        (self._caller / "plugin").mkdir(parents=True)
        (self._caller / "plugin" / "main.cpp").write_text(_BADLY_FORMATTED, "utf-8")
        self._before = (_contents(self._copy), _contents(self._caller))
        self._commands = command_table.read(self._copy, sdk)
        self.outcomes: list[Outcome] = []
        self.tests = (0, 0)

    def run(self) -> None:
        """Makes every trial; the tests come last, since theirs is the longest output."""
        for command in sorted(self._commands, key=lambda command: command.name == "test"):
            for trial in command.right:
                for in_terminal in (False, True):
                    self._try([command.name, *trial], in_terminal)
            for trial in command.long:
                self._try([command.name, *trial], False, show=True)

    def run_once(self, names: tuple[str, ...]) -> None:
        """Makes the first trial of each of these commands."""
        for command in self._commands:
            if command.name in names:
                self._try([command.name, *command.right[0]], False)

    def _try(self, words: list[str], in_terminal: bool, show: bool = False) -> None:
        begin = time.monotonic()
        command = [str(self._copy / "dev"), *words]
        name = f"./dev {' '.join(words)} (in {'a terminal, ' if in_terminal else ''}{self._copy.name})"
        print(f"gate: {name}", flush=True)
        ran = _shown(command, self._caller) if show else outside.run(command, self._caller, in_terminal)
        complaint = f"ends with {ran.code}" if ran.code else ""
        if (_contents(self._copy), _contents(self._caller)) != self._before:
            complaint = "changes a source, or the folder that it is called from"
            self._before = (_contents(self._copy), _contents(self._caller))
        tests = _TESTS.search(ran.output)
        if tests:
            self.tests = (int(tests[2]) - int(tests[1]), int(tests[1]))
        said = "" if show else ran.output + ran.errors
        if complaint:
            print(f"gate: {complaint}", flush=True)
        self.outcomes.append(Outcome(name, time.monotonic() - begin, complaint, said))

    def note(self, name: str, complaint: str) -> None:
        """Adds what was tried elsewhere."""
        self.outcomes.append(Outcome(name, 0, complaint, ""))

    def summary(self) -> str:
        """What every trial took, what the failed ones said, and the sum of trials and tests as the last line."""
        failed = [outcome for outcome in self.outcomes if outcome.complaint]
        lines = []
        for outcome in failed:
            lines += [f"--- {outcome.trial} {outcome.complaint}; it said:", outcome.said]
        lines += [
            f"{'FAILED' if outcome.complaint else 'ok':<8}{outcome.seconds:6.1f} s  {outcome.trial}"
            for outcome in self.outcomes
        ]
        passed = len(self.outcomes) - len(failed) + self.tests[0]
        lines.append(f"{passed} passed, {len(failed) + self.tests[1]} failed")
        return "\n".join(lines)


def _shown(command: list[str], folder: Path) -> outside.Ran:
    """Runs a command without a terminal, and shows what it says as it says it."""
    with subprocess.Popen(
        command,
        cwd=folder,
        env=outside.ENVIRONMENT,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        encoding="utf-8",
        errors="replace",
    ) as running:
        assert running.stdout is not None
        said = []
        for line in running.stdout:
            print(line, end="", flush=True)
            said.append(line)
    return outside.Ran(running.returncode, "".join(said), "")


def main(tree: Path) -> int:
    """Runs the gate for a tree; 1 when it is shut."""
    gate = Gate(tree, "a tree")
    long_subjects = commit_subjects.too_long(tree)
    gate.note("commit subjects", f"too long: {'; '.join(long_subjects)}" if long_subjects else "")
    gate.run()
    apostrophe = Gate(tree, "it's a tree")
    apostrophe.run_once(_WITH_AN_APOSTROPHE)
    gate.outcomes += apostrophe.outcomes
    print(gate.summary())
    return 1 if any(outcome.complaint for outcome in gate.outcomes) else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]).resolve() if len(sys.argv) > 1 else _HOME))
