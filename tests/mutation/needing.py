"""Which of the sources that include a header have code of a function, or a variable, of it in their object. The others
come out the same whatever a fault there does, and need not be compiled anew."""

from __future__ import annotations

from pathlib import Path

from code_lines import line_table, rows_in
from faults import Fault


class Needing:
    """The objects of a build that inlines nothing, by their sources."""

    def __init__(self, tree: Path, objects: dict[str, Path]) -> None:
        self._tree = tree
        self._objects = objects
        self._lines: dict[str, dict[str, set[int]]] = {}

    def needs(self, source: str, fault: Fault) -> bool:
        """Whether the source's object may differ with a fault in a header that the source includes."""
        if fault.at_compile_time or source == fault.file:
            return True
        if fault.function:
            first, last = fault.function
            return any(first <= line <= last for line in self._lines_of(source).get(fault.file, ()))
        return not fault.variable or fault.variable.encode() in self._objects[source].read_bytes()

    def _lines_of(self, source: str) -> dict[str, set[int]]:
        if source not in self._lines:
            lines: dict[str, set[int]] = {}
            for _, file, line in rows_in(line_table(self._objects[source]), self._tree):
                lines.setdefault(file, set()).add(line)
            self._lines[source] = lines
        return self._lines[source]
