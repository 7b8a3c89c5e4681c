"""Reads from a finished i386 Mach-O library what the build checks and marks: its libraries, sections, undefined symbols,
exports, and what the loader is told to bind and to rebase, with the place in the file where each bind's flags stand."""

from __future__ import annotations

import struct
from collections.abc import Iterator
from dataclasses import dataclass, field

_MAGIC = 0xFEEDFACE
_I386 = 7
_DYLIB = 6

_LC_SEGMENT = 0x1
_LC_SYMTAB = 0x2
_LC_LOAD_DYLIB = 0xC
_LC_UUID = 0x1B
_LC_RPATH = 0x8000001C
_LC_REEXPORT_DYLIB = 0x8000001F
_LC_DYLD_INFO_ONLY = 0x80000022

_HEADER_SIZE = 28

_ZERO_FILL_KINDS = (0x1, 0xC)

_N_TYPE_AND_EXTERNAL = 0x0F
_UNDEFINED_EXTERNAL = 0x01


class ImageError(Exception):
    """Not a library of the kind that this module reads."""


@dataclass(frozen=True)
class Bind:
    """One word that the loader fills with an import's address."""

    symbol: str
    ordinal: int
    segment: int
    flags_at: int


@dataclass(frozen=True)
class UndefinedSymbol:
    """One import in the symbol table. `description_at` is the file offset of its 16 descriptive bits."""

    name: str
    ordinal: int
    description_at: int


@dataclass
class Image:
    """What one library says of itself. Library ordinals count from 1. A run path is a file offset, that of its load
    command, and its text."""

    data: bytes
    run_paths: list[tuple[int, str]] = field(default_factory=list)
    has_uuid: bool = False
    segments: list[str] = field(default_factory=list)
    sections: list[str] = field(default_factory=list)
    zero_filled: list[str] = field(default_factory=list)
    reexported: list[str] = field(default_factory=list)
    libraries: list[str] = field(default_factory=list)
    undefined: list[UndefinedSymbol] = field(default_factory=list)
    binds: list[Bind] = field(default_factory=list)
    lazy_bind_size: int = 0
    rebased_segments: set[str] = field(default_factory=set)
    exports: list[str] = field(default_factory=list)


def read_image(data: bytes) -> Image:
    """Reads a library from its bytes. Raises ImageError when they are not one."""
    magic, cpu, _, kind, count, _, _ = struct.unpack_from("<7I", data)
    if (magic, cpu, kind) != (_MAGIC, _I386, _DYLIB):
        raise ImageError("this is no i386 Mach-O library")
    image = Image(data)
    offset = _HEADER_SIZE
    for _ in range(count):
        command, size = struct.unpack_from("<2I", data, offset)
        if command == _LC_SEGMENT:
            _read_segment(image, offset)
        elif command in (_LC_LOAD_DYLIB, _LC_REEXPORT_DYLIB):
            (name_at,) = struct.unpack_from("<I", data, offset + 8)
            image.libraries.append(_text(data, offset + name_at))
            if command == _LC_REEXPORT_DYLIB:
                image.reexported.append(image.libraries[-1])
        elif command == _LC_RPATH:
            (text_at,) = struct.unpack_from("<I", data, offset + 8)
            image.run_paths.append((offset, _text(data, offset + text_at)))
        elif command == _LC_UUID:
            image.has_uuid = True
        elif command == _LC_SYMTAB:
            _read_symbols(image, offset)
        elif command == _LC_DYLD_INFO_ONLY:
            _read_loader_info(image, offset)
        offset += size
    return image


def _text(data: bytes, start: int) -> str:
    return data[start : data.index(b"\0", start)].decode("ascii")


def _fixed_text(data: bytes) -> str:
    return data.rstrip(b"\0").decode("ascii")


def _read_segment(image: Image, offset: int) -> None:
    image.segments.append(_fixed_text(image.data[offset + 8 : offset + 24]))
    (section_count,) = struct.unpack_from("<I", image.data, offset + 48)
    for number in range(section_count):
        start = offset + 56 + 68 * number
        section, segment = image.data[start : start + 16], image.data[start + 16 : start + 32]
        image.sections.append(f"{_fixed_text(segment)},{_fixed_text(section)}")
        (flags,) = struct.unpack_from("<I", image.data, start + 56)
        if flags & 0xFF in _ZERO_FILL_KINDS:
            image.zero_filled.append(image.sections[-1])


def _read_symbols(image: Image, offset: int) -> None:
    table, count, strings, _ = struct.unpack_from("<4I", image.data, offset + 8)
    for number in range(count):
        entry = table + 12 * number
        name_at, kind, _, description, _ = struct.unpack_from("<IBBHI", image.data, entry)
        if kind & _N_TYPE_AND_EXTERNAL == _UNDEFINED_EXTERNAL:
            name = _text(image.data, strings + name_at)
            image.undefined.append(UndefinedSymbol(name, description >> 8, entry + 6))


def _read_loader_info(image: Image, offset: int) -> None:
    rebase, rebase_size, bind, bind_size, weak, weak_size, _, lazy_size, export, export_size = struct.unpack_from(
        "<10I", image.data, offset + 8
    )
    if weak_size:
        raise ImageError(f"there are coalesced symbols for the loader to settle (at {weak})")
    image.lazy_bind_size = lazy_size
    image.rebased_segments = {image.segments[number] for number in _rebases(image.data, rebase, rebase_size)}
    image.binds = list(_binds(image.data, bind, bind_size))
    if export_size:
        image.exports = sorted(_exports(image.data, export, export, ""))


def _uleb(data: bytes, at: int) -> tuple[int, int]:
    value = shift = 0
    while True:
        byte = data[at]
        at += 1
        value |= (byte & 0x7F) << shift
        shift += 7
        if byte < 0x80:
            return value, at


def _rebases(data: bytes, start: int, size: int) -> Iterator[int]:
    """The segment number of each run of rebased words."""
    at, end, segment = start, start + size, 0
    while at < end:
        operation, immediate = data[at] & 0xF0, data[at] & 0x0F
        at += 1
        if operation == 0x00:  # done
            return
        if operation == 0x20:  # segment and offset
            segment = immediate
            _, at = _uleb(data, at)
        elif operation == 0x30:  # add to the offset
            _, at = _uleb(data, at)
        elif operation == 0x50:  # rebase a number of words
            yield segment
        elif operation in (0x60, 0x70):  # the same, the number or the step following
            _, at = _uleb(data, at)
            yield segment
        elif operation == 0x80:  # number and step following
            _, at = _uleb(data, at)
            _, at = _uleb(data, at)
            yield segment
        elif operation not in (0x10, 0x40):  # type; add scaled
            raise ImageError(f"unknown rebase operation {operation:#x}")


def _binds(data: bytes, start: int, size: int) -> Iterator[Bind]:
    at, end = start, start + size
    symbol, flags_at, ordinal, segment = "", 0, 0, 0
    while at < end:
        operation, immediate = data[at] & 0xF0, data[at] & 0x0F
        at += 1
        if operation == 0x00:  # done
            return
        if operation == 0x10:  # library, immediate
            ordinal = immediate
        elif operation == 0x20:  # library, following
            ordinal, at = _uleb(data, at)
        elif operation == 0x40:  # symbol, with its flags
            flags_at = at - 1
            symbol = _text(data, at)
            at += len(symbol) + 1
        elif operation == 0x70:  # segment and offset
            segment = immediate
            _, at = _uleb(data, at)
        elif operation in (0x60, 0x80):  # addend; add to the offset
            _, at = _uleb(data, at)
        elif operation == 0x90:  # bind
            yield Bind(symbol, ordinal, segment, flags_at)
        elif operation == 0xA0:  # bind, then add to the offset
            yield Bind(symbol, ordinal, segment, flags_at)
            _, at = _uleb(data, at)
        elif operation == 0xB0:  # bind, then add scaled
            yield Bind(symbol, ordinal, segment, flags_at)
        elif operation == 0xC0:  # bind several
            _, at = _uleb(data, at)
            _, at = _uleb(data, at)
            yield Bind(symbol, ordinal, segment, flags_at)
        elif operation != 0x50:  # type
            raise ImageError(f"unknown bind operation {operation:#x}")


def _exports(data: bytes, trie: int, node: int, prefix: str) -> Iterator[str]:
    terminal_size, at = _uleb(data, node)
    if terminal_size:
        yield prefix
    at += terminal_size
    children = data[at]
    at += 1
    for _ in range(children):
        edge = _text(data, at)
        child, at = _uleb(data, at + len(edge) + 1)
        yield from _exports(data, trie, trie + child, prefix + edge)
