"""Which of the sources that include a header have code of a function, or a variable, of it in their object. The others
come out the same whatever a fault there does, and need not be compiled anew."""

from __future__ import annotations

import os
import re
import subprocess
from pathlib import Path

from faults import Fault

_FOLDER = re.compile(r'^include_directories\[ *(\d+)\] = "(.*)"$')
_FILE = re.compile(r"^file_names\[ *(\d+)\]:$")
_NAME = re.compile(r'^ +name: "(.*)"$')
_OF_FOLDER = re.compile(r"^ +dir_index: (\d+)$")
_ROW = re.compile(r"^0x[0-9a-f]+ +(\d+) +\d+ +(\d+) ")


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
            command = ["llvm-dwarfdump-14", "--debug-line", str(self._objects[source])]
            said = subprocess.run(command, check=True, capture_output=True, text=True).stdout
            self._lines[source] = lines_in(said, self._tree)
        return self._lines[source]


def lines_in(said: str, tree: Path) -> dict[str, set[int]]:
    """The lines of the tree's files that have code, of what llvm-dwarfdump says about an object."""
    folders: dict[str, str] = {}
    files: dict[str, str] = {}
    lines: dict[str, set[int]] = {}
    number = name = ""
    for line in said.splitlines():
        if row := _ROW.match(line):
            path = Path(files[row[2]])
            if path.is_relative_to(tree):
                lines.setdefault(str(path.relative_to(tree)), set()).add(int(row[1]))
        elif folder := _FOLDER.match(line):
            folders[folder[1]] = folder[2]
        elif file := _FILE.match(line):
            number = file[1]
        elif named := _NAME.match(line):
            name = named[1]
        elif of_folder := _OF_FOLDER.match(line):
            files[number] = os.path.normpath(Path(folders["0"], folders[of_folder[1]], name))
    return lines
