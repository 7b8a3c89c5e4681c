"""All faults of the product's sources: which file is read how, and what all makers of faults make of it."""

from __future__ import annotations

import re
from collections.abc import Iterator
from pathlib import Path

from condition_faults import condition_faults
from faults import Fault
from lifetime_faults import lifetime_faults
from statement_faults import statement_faults
from syntax import Source, read_source
from value_faults import value_faults

ROOMS = ("plugin", "host", "convert", "spotlight")
_MAKERS = (statement_faults, condition_faults, value_faults, lifetime_faults)
_INCLUDE = re.compile(r'^#include "([^"]+)"', re.MULTILINE)


def product_files(tree: Path) -> list[str]:
    """The sources and headers of the product, by their place in the tree."""
    return [
        str(path.relative_to(tree))
        for room in ROOMS
        for path in sorted((tree / room).iterdir())
        if path.suffix in {".cpp", ".h"}
    ]


def users(tree: Path) -> dict[str, list[str]]:
    """For each file of the product the sources whose code it is part of: itself, or those that include it."""
    files = product_files(tree)
    includes = {file: [one for one in _INCLUDE.findall((tree / file).read_text("utf-8"))] for file in files}
    found: dict[str, list[str]] = {file: [] for file in files}
    for file in files:
        if file.endswith(".cpp"):
            for part in _closure(file, includes):
                if part in found:
                    found[part].append(file)
    return found


def _closure(file: str, includes: dict[str, list[str]]) -> set[str]:
    reached, pending = {file}, [file]
    while pending:
        for one in includes.get(pending.pop(), []):
            if one not in reached:
                reached.add(one)
                pending.append(one)
    return reached


def faults_of(source: Source) -> Iterator[Fault]:
    """Each fault once, in the order of the file. A change that two makers make counts as the first one's."""
    seen: set[tuple[int, int, str]] = set()
    found = [one for maker in _MAKERS for one in maker(source)]
    for one in sorted(found, key=lambda fault: (fault.start, fault.end)):
        change = (one.start, one.end, one.text)
        if change not in seen and source.bytes[one.start : one.end].decode() != one.text:
            seen.add(change)
            yield one


def find_faults(tree: Path, files: list[str], flags: list[str]) -> list[Fault]:
    """The faults of these files."""
    compiled_by = users(tree)
    found = []
    for file in files:
        if compiled_by[file]:
            compiled = file if file in compiled_by[file] else compiled_by[file][0]
            found += faults_of(read_source(tree, file, compiled, flags))
    return found
