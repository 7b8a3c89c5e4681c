"""Copies of the finished library, each damaged in one way: what was done, at which level it must show, and how.

The places are found in the file itself (load commands, tables, code of a named function), so that they stay right when
the library changes; a place that cannot be found fails the test that looks for it.
"""

from __future__ import annotations

import re
import struct
import subprocess
from collections.abc import Callable
from dataclasses import dataclass
from pathlib import Path

_SEGMENT, _SYMBOL_TABLE, _LOAD_LIBRARY, _ID = 0x1, 0x2, 0xC, 0xD
_UUID, _OLDEST_SYSTEM, _DATA_IN_CODE, _SOURCE_VERSION = 0x1B, 0x24, 0x29, 0x2A
_LOADER_INFO = 0x80000022
_MAKES_ONLY_INITIALISERS, _ZERO_FILL = 0x9, 0x1


class Library:
    """The bytes of a library, to be damaged."""

    def __init__(self, path: Path) -> None:
        self.data = bytearray(path.read_bytes())
        nm = ["llvm-nm-14", "--defined-only", "--demangle", str(path)]
        listing = subprocess.run(nm, check=True, capture_output=True, text=True).stdout
        listing = listing.replace("(anonymous namespace)::", "")
        self._symbols = {line[11:].strip(): int(line[:8], 16) for line in listing.splitlines()}

    def word(self, at: int) -> int:
        """The 32-bit word at a place of the file."""
        return int.from_bytes(self.data[at : at + 4], "little")

    def put(self, at: int, word: int) -> None:
        """Changes the word at a place."""
        struct.pack_into("<I", self.data, at, word & 0xFFFFFFFF)

    def command(self, kind: int, number: int = 0) -> int:
        """Where the load command of a kind is."""
        at = 28
        for _ in range(self.word(16)):
            if self.word(at) == kind:
                if number == 0:
                    return at
                number -= 1
            at += self.word(at + 4)
        raise LookupError(f"no load command {kind:#x}")

    def segment(self, name: bytes) -> int:
        """Where a segment's load command is."""
        number = 0
        while self.data[self.command(_SEGMENT, number) + 8 :][: len(name) + 1] != name + b"\0":
            number += 1
        return self.command(_SEGMENT, number)

    def section(self, name: bytes, segment: bytes = b"__TEXT") -> int:
        """Where a section's record is."""
        start = self.segment(segment)
        for number in range(self.word(start + 48)):
            at = start + 56 + 68 * number
            if self.data[at : at + 16].rstrip(b"\0") == name:
                return at
        raise LookupError(f"no section {name!r}")

    def contents(self, name: bytes, segment: bytes = b"__TEXT") -> tuple[int, int]:
        """Where a section's contents begin and end."""
        record = self.section(name, segment)
        return self.word(record + 40), self.word(record + 40) + self.word(record + 36)

    def all_data(self) -> tuple[int, int]:
        """Where all data begins and ends."""
        start = self.segment(b"__DATA")
        return self.word(start + 32), self.word(start + 32) + self.word(start + 36)

    def binds(self) -> tuple[int, int]:
        """Where the table of binds begins and ends."""
        info = self.command(_LOADER_INFO)
        return self.word(info + 16), self.word(info + 16) + self.word(info + 20)

    def function(self, name: str) -> int:
        """Where a function's code begins; the code's addresses are its places in the file."""
        return self._symbols[name]

    def replace(self, old: bytes, new: bytes, within: tuple[int, int] | None = None) -> None:
        """Changes some bytes wherever they stand in a part of the file."""
        begin, end = within or (0, len(self.data))
        if len(old) != len(new) or old not in self.data[begin:end]:
            raise LookupError(f"{old!r} cannot be replaced")
        self.data[begin:end] = self.data[begin:end].replace(old, new)


@dataclass(frozen=True)
class Damage:
    """What was done, the level of the checks that find it, and what they must say."""

    title: str
    level: int
    says: str
    do: Callable[[Library], None]


def _cut(library: Library) -> None:
    del library.data[len(library.data) // 2 :]


def _forget_uuid(library: Library) -> None:
    at = library.command(_UUID) + 8
    library.data[at : at + 16] = bytes(16)


def _swap_keys(library: Library) -> None:
    within = library.binds()
    library.replace(b"_kMDItemTitle\0", b"_kMDItemTemp?\0", within)
    library.replace(b"_kMDItemTempo\0", b"_kMDItemTitle\0", within)
    library.replace(b"_kMDItemTemp?\0", b"_kMDItemTempo\0", within)


def _point_weak_flags(library: Library, was: int, now: int) -> None:
    begin, end = library.binds()
    symbol = re.search(bytes([was]) + rb"_kMDItem\w+\0", library.data[begin:end])
    if symbol is None:
        raise LookupError("no such import")
    library.data[begin + symbol.start()] = now


def _bind_from_elsewhere(library: Library) -> None:
    begin, _ = library.binds()
    if library.data[begin] & 0xF0 != 0x10:
        raise LookupError("the binds do not begin with a library")
    library.data[begin] += 1 if library.data[begin] & 0x0F == 1 else -1


def _end_rebases_early(library: Library) -> None:
    info = library.command(_LOADER_INFO)
    library.data[library.word(info + 8)] = 0


def _first_frame(library: Library) -> int:
    """Where the first entry behind a common one is in the table of frames."""
    at, end = library.contents(b"__eh_frame")
    while at < end:
        if library.word(at + 4) != 0:
            return at
        at += 4 + library.word(at)
    raise LookupError("no frames")


def _frame_with_handlers(library: Library) -> int:
    """Where a frame has the pointer to its handlers."""
    at, end = library.contents(b"__eh_frame")
    with_handlers = set()
    while at < end and library.word(at) != 0:
        if library.word(at + 4) == 0:
            if b"L" in library.data[at + 9 : at + 9 + 6].split(b"\0")[0]:
                with_handlers.add(at)
        elif at + 4 - library.word(at + 4) in with_handlers:
            return at + 17
        at += 4 + library.word(at)
    raise LookupError("no frame has handlers")


def _handler_of_common_entry(library: Library) -> int:
    at, end = library.contents(b"__eh_frame")
    while at < end:
        text = library.data[at + 9 : at + 15].split(b"\0")[0]
        if library.word(at + 4) == 0 and text.startswith(b"zP"):
            # Behind the text: two alignments, a register, a length and an encoding, a byte each.
            return at + 9 + len(text) + 1 + 5
        at += 4 + library.word(at)
    raise LookupError("no common entry has a handler")


def _in_function(name: str, code: bytes) -> Callable[[Library], None]:
    def do(library: Library) -> None:
        at = library.function(name)
        library.data[at : at + len(code)] = code

    return do


def _turn_first_condition(library: Library) -> None:
    at = library.function("rbMDQueryIsGatheringComplete(REALobjectStruct*)")
    found = re.compile(rb"\x85.[\x74\x75]", re.DOTALL).search(library.data, at, at + 60)
    if found is None:
        raise LookupError("no condition")
    library.data[found.end() - 1] ^= 1


def _move_declared_function(library: Library) -> None:
    address = library.function("rbMDQueryGetResultCount(REALobjectStruct*)")
    begin, end = library.all_data()
    places = [at for at in range(begin, end, 4) if library.word(at) == address]
    if not places:
        raise LookupError("no record names the function")
    for at in places:
        library.put(at, address + 5)


def _swap_declared_functions(library: Library) -> None:
    count = library.function("rbMDQueryGetResultCount(REALobjectStruct*)")
    other = library.function("rbMDQueryIsGatheringComplete(REALobjectStruct*)")
    begin, end = library.all_data()
    swapped = {count: other, other: count}
    for at in range(begin, end, 4):
        library.put(at, swapped.get(library.word(at), library.word(at)))


def _at(place: Callable[[Library], int], change: Callable[[int], int]) -> Callable[[Library], None]:
    """Changes one word."""

    def do(library: Library) -> None:
        at = place(library)
        library.put(at, change(library.word(at)))

    return do


def _kind_of(section: bytes, kind: int) -> Callable[[Library], None]:
    return _at(lambda library: library.section(section, b"__DATA") + 56, lambda flags: flags & ~0xFF | kind)


def _in_commands(old: bytes, new: bytes) -> Callable[[Library], None]:
    return lambda library: library.replace(old, new, (0, 28 + library.word(20)))


def _in_texts(old: bytes, new: bytes) -> Callable[[Library], None]:
    return lambda library: library.replace(old, new, library.contents(b"__cstring"))


DAMAGES = [
    Damage("cut in two", 1, "ends after the file", _cut),
    Damage("marked as a 64-bit file", 1, "64-bit", _at(lambda library: 0, lambda _: 0xFEEDFACF)),
    Damage("made for another processor", 1, "processor", _at(lambda library: 4, lambda _: 18)),
    Damage("made a program", 1, "file type 2", _at(lambda library: 12, lambda _: 2)),
    Damage("without the flag that nothing is handed on", 1, "no library is handed on",
           _at(lambda library: 24, lambda flags: flags & ~0x100000)),
    Damage("without home libraries of symbols", 1, "symbols have home libraries",
           _at(lambda library: 24, lambda flags: flags & ~0x80)),
    Damage("with a flag more", 1, "other flags", _at(lambda library: 24, lambda flags: flags | 0x2000)),
    Damage("with an empty UUID", 1, "UUID is empty", _forget_uuid),
    Damage("with a load command that loaders must obey", 1, "must be obeyed",
           _at(lambda library: library.command(_DATA_IN_CODE), lambda _: 0x80000099)),
    Damage("for 10.9 and later", 1, "oldest system is 10.9",
           _at(lambda library: library.command(_OLDEST_SYSTEM) + 8, lambda _: 0x000A0900)),
    Damage("of another source version", 1, "source version",
           _at(lambda library: library.command(_SOURCE_VERSION) + 12, lambda high: high + 1)),
    Damage("of version 15.6", 1, "version is 15.6", _at(lambda library: library.command(_ID) + 16, lambda _: 0xF0600)),
    Damage("with another name", 1, "its name is", _in_commands(b"@rpath/Spotlight", b"@rpath/Spotlite_")),
    Damage("with code that may be written to", 1, "__TEXT has the rights",
           _at(lambda library: library.segment(b"__TEXT") + 44, lambda _: 7)),
    Damage("with data that may not be written to", 1, "more words than there are",
           _at(lambda library: library.segment(b"__DATA") + 44, lambda _: 1)),
    Damage("with data that runs at loading", 1, "runs code that nobody calls",
           _kind_of(b"__cfstring", _MAKES_ONLY_INITIALISERS)),
    Damage("with zeros between other data", 1, "comes after zeros", _kind_of(b"__const", _ZERO_FILL)),
    Damage("with another export", 1, "it exports",
           lambda library: library.replace(b"_REALPluginMain", b"_REALPluginMaim",
                                           (library.binds()[1], library.word(library.command(_SYMBOL_TABLE) + 8)))),
    Damage("with a library that does not exist", 1, "is on no list", _in_commands(b"/Carbon\0", b"/Carbox\0")),
    Damage("with an import that does not exist", 1, "is on no list",
           lambda library: library.replace(b"_CFRetain\0", b"_CFRetaim\0", library.binds())),
    Damage("with an import from the wrong library", 1, "is bound from", _bind_from_elsewhere),
    Damage("with a weak import made strong", 1, "is no weak import",
           lambda library: _point_weak_flags(library, 0x41, 0x40)),
    Damage("with a strong import made weak", 1, "is a weak import",
           lambda library: _point_weak_flags(library, 0x40, 0x41)),
    Damage("without rebases", 1, "no word moves", _end_rebases_early),
    Damage("with another version in the property list", 1, "CFBundleVersion",
           lambda library: library.replace(b"<string>15.5</string>", b"<string>15.6</string>")),
    Damage("with a frame that is too long", 1, "a frame is too long",
           _at(lambda library: _first_frame(library) + 12, lambda size: size + 64)),
    Damage("with a frame of another function", 1, "a frame describes no function",
           _at(lambda library: _first_frame(library) + 8, lambda distance: distance + 3)),
    Damage("with handlers that lie elsewhere", 1, "lie elsewhere",
           _at(_frame_with_handlers, lambda distance: distance + 0x100000)),
    Damage("with frames that nobody handles", 1, "frames are handled by",
           _at(_handler_of_common_entry, lambda distance: distance + 4)),
    Damage("that stops at once", 2, "killed by signal", _in_function("_REALPluginMain", b"\xcc")),
    Damage("that registers nothing", 2, "nothing is registered", _in_function("_REALPluginMain", b"\xc3")),
    Damage("with another declaration", 2, "AttributeNamez", _in_texts(b"AttributeNames as", b"AttributeNamez as")),
    Damage("with a constant of another value", 2, "kMDQueryWantsUpdates",
           _in_texts(b"kMDQueryWantsUpdates=4", b"kMDQueryWantsUpdates=5")),
    Damage("with a record that points into a function", 2, "no function begins", _move_declared_function),
    Damage("with two functions in each other's place", 3, "with the native build", _swap_declared_functions),
    Damage("with a method that never returns", 3, "processor time",
           _in_function("rbHISearchWindowShow(REALstringStruct*)", b"\xeb\xfe")),
    Damage("with another message", 3, "with the native build",
           _in_texts(b"MDQuery Reference is nil", b"MDQuery Reference is nul")),
    Damage("with two attribute keys in each other's place", 3, "with the native build", _swap_keys),
    Damage("with a condition turned round", 3, "", _turn_first_condition),
    Damage("with a function that gives always 0", 3, "with the native build",
           _in_function("rbMDQueryGetResultCount(REALobjectStruct*)", b"\x31\xc0\xc3")),
]
