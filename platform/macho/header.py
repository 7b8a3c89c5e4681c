"""Writes into a library's header what the linker leaves out of it: the flag that says that no other library's symbols are
handed on, without which the platform's linker takes no library of this age, and a UUID."""

from __future__ import annotations

import hashlib
import struct
import uuid

from image import Image

_NO_REEXPORTED_DYLIBS = 0x00100000
_LC_UUID = 0x1B
_UUID_COMMAND_SIZE = 24

# Where the header counts its load commands and has its flags.
_COMMAND_COUNT_AT = 16
_FLAGS_AT = 24


def header_faults(image: Image) -> list[str]:
    """What stands in the way of complete_header, one sentence each."""
    found = [f"{library} is handed on" for library in image.reexported]
    if image.has_uuid:
        found.append("there is a UUID already")
    if image.commands_end + _UUID_COMMAND_SIZE > image.contents_start:
        found.append("there is no room for one more load command")
    return found


def complete_header(image: Image, data: bytearray) -> None:
    """Sets the flag and appends the UUID in `data`, the bytes of `image` with everything else as it ships: the UUID is
    made from them, so that the same contents have the same one and other contents another."""
    count, size, flags = struct.unpack_from("<3I", data, _COMMAND_COUNT_AT)
    struct.pack_into("<2I", data, _COMMAND_COUNT_AT, count + 1, size + _UUID_COMMAND_SIZE)
    struct.pack_into("<I", data, _FLAGS_AT, flags | _NO_REEXPORTED_DYLIBS)
    struct.pack_into("<2I16x", data, image.commands_end, _LC_UUID, _UUID_COMMAND_SIZE)
    # Version 5 is the one whose bits come from this digest.
    made = uuid.UUID(bytes=hashlib.sha1(data).digest()[:16], version=5)
    struct.pack_into("<16s", data, image.commands_end + 8, made.bytes)
