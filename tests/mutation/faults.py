"""A fault: one small change of one source, and how it reads as a diff."""

from __future__ import annotations

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
    # The name of the function, or of the variable that the fault is part of; none for what is only known while compiling.
    function_name: str = ""
    variable: str = ""

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
        source = (tree / self.file).read_bytes()
        first = source.rfind(b"\n", 0, self.start) + 1
        last = (source + b"\n").find(b"\n", self.end)
        come = source[first : self.start] + self.text.encode() + source[self.end : last]
        return ChangedLines(self.file, _lines(source[first:last]), _lines(come))


def _lines(text: bytes) -> tuple[str, ...]:
    return tuple(line.strip() for line in text.decode().splitlines() if line.strip())


@dataclass(frozen=True)
class ChangedLines:
    """What a fault does to a file, without where."""

    file: str
    gone: tuple[str, ...]
    come: tuple[str, ...]

    def __str__(self) -> str:
        return "\n".join([self.file, *(f"- {line}" for line in self.gone), *(f"+ {line}" for line in self.come)])
