"""A fault: one small change of one source, and how it reads as a diff."""

from __future__ import annotations

import difflib
from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True)
class Fault:
    """The bytes from start to end of a file (by its place in the tree) give way to a text."""

    file: str
    start: int
    end: int
    text: str
    # What was done, as the report names it.
    kind: str
    # Where the change begins, and the lines of the function around it; none for data.
    line: int
    function: tuple[int, int] | None = None
    # The compiler may have run that function, so that no test is seen to reach it.
    at_compile_time: bool = False

    @property
    def room(self) -> str:
        """The folder of the file."""
        return self.file.split("/")[0]

    def applied(self, tree: Path) -> bytes:
        """The whole file with the fault in it."""
        source = (tree / self.file).read_bytes()
        return source[: self.start] + self.text.encode() + source[self.end :]

    def changed_lines(self, tree: Path) -> ChangedLines:
        """The lines that go and those that come, which is how a list names a fault: it outlives lines put before it."""
        before = (tree / self.file).read_text("utf-8").splitlines()
        after = self.applied(tree).decode().splitlines()
        gone, come = [], []
        for line in list(difflib.unified_diff(before, after, n=0))[2:]:
            if line.startswith("-"):
                gone.append(line[1:].strip())
            elif line.startswith("+"):
                come.append(line[1:].strip())
        return ChangedLines(self.file, tuple(filter(None, gone)), tuple(filter(None, come)))


@dataclass(frozen=True)
class ChangedLines:
    """What a fault does to a file, without where."""

    file: str
    gone: tuple[str, ...]
    come: tuple[str, ...]

    def __str__(self) -> str:
        return "\n".join([self.file, *(f"- {line}" for line in self.gone), *(f"+ {line}" for line in self.come)])
