"""Which address has the code of which line, as llvm-dwarfdump tells it of an object or a library."""

from __future__ import annotations

import os
import re
import subprocess
from collections.abc import Iterator
from pathlib import Path

_FOLDER = re.compile(r'^include_directories\[ *(\d+)\] = "(.*)"$')
_FILE = re.compile(r"^file_names\[ *(\d+)\]:$")
_NAME = re.compile(r'^ +name: "(.*)"$')
_OF_FOLDER = re.compile(r"^ +dir_index: (\d+)$")
_ROW = re.compile(r"^0x([0-9a-f]+) +(\d+) +\d+ +(\d+) ")


def line_table(code: Path) -> str:
    """What is said of all lines."""
    command = ["llvm-dwarfdump-14", "--debug-line", str(code)]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def rows_in(said: str, tree: Path) -> Iterator[tuple[int, str, int]]:
    """Addresses with the file of the tree and the line to which they belong. What the compiler added has no line."""
    folders: dict[str, str] = {}
    files: dict[str, Path] = {}
    number = name = ""
    for line in said.splitlines():
        if row := _ROW.match(line):
            path = files[row[3]]
            if row[2] != "0" and path.is_relative_to(tree):
                yield int(row[1], 16), str(path.relative_to(tree)), int(row[2])
        elif folder := _FOLDER.match(line):
            folders[folder[1]] = folder[2]
        elif file := _FILE.match(line):
            number = file[1]
        elif named := _NAME.match(line):
            name = named[1]
        elif of_folder := _OF_FOLDER.match(line):
            files[number] = Path(os.path.normpath(Path(folders["0"], folders[of_folder[1]], name)))
