"""The lists of what the product may import, one per library, as platform/imports holds them.

A list opens with the library's install name and versions; after that every line is one symbol:

    library /usr/lib/libSystem.B.dylib
    current-version 1252
    compatibility-version 1

    function _calloc
    data     _kMDItemGPSDOP   weak since 10.7

A weak symbol is younger than the oldest supported system. Its address is null where the running system lacks it.
"""

from __future__ import annotations

from dataclasses import dataclass
from pathlib import Path


class ListError(Exception):
    """A list that cannot be read, with file and line."""


@dataclass(frozen=True)
class Import:
    """One symbol of a library, by its linker name."""

    name: str
    is_function: bool
    is_weak: bool


@dataclass(frozen=True)
class Library:
    """What the product may import from one library, and how the library is recorded in the product."""

    install_name: str
    current_version: str
    compatibility_version: str
    imports: tuple[Import, ...]


def parse_list(text: str, where: str) -> Library:
    """Reads one list. `where` names it in errors."""
    header: dict[str, str] = {}
    imports: list[Import] = []
    for number, line in enumerate(text.splitlines(), start=1):
        words = line.split("#", 1)[0].split()
        if not words:
            continue
        if words[0] in ("library", "current-version", "compatibility-version") and len(words) == 2:
            header[words[0]] = words[1]
        elif words[0] in ("function", "data") and (len(words) == 2 or words[2:4] == ["weak", "since"]):
            imports.append(Import(words[1], words[0] == "function", len(words) > 2))
        else:
            raise ListError(f"{where}:{number}: cannot read '{line}'")
    try:
        return Library(
            header["library"], header["current-version"], header["compatibility-version"], tuple(imports)
        )
    except KeyError as missing:
        raise ListError(f"{where}: no line says '{missing.args[0]}'") from None


def read_lists(folder: Path) -> list[Library]:
    """Reads every list of a folder. A symbol that two lists claim is an error."""
    libraries = [parse_list(path.read_text("utf-8"), str(path)) for path in sorted(folder.glob("*.txt"))]
    owner: dict[str, str] = {}
    for library in libraries:
        for entry in library.imports:
            if entry.name in owner:
                raise ListError(f"{entry.name} is listed for {owner[entry.name]} and {library.install_name}")
            owner[entry.name] = library.install_name
    return libraries


def imports_by_name(libraries: list[Library]) -> dict[str, Import]:
    """All symbols of all lists by linker name."""
    return {entry.name: entry for library in libraries for entry in library.imports}
