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

# The linker leaves as much room behind the load commands as happens to be there. So it is given a run path, which a
# library that loads none by it has no use for, and whose command is as long as that of a UUID.
PLACEHOLDER = "a-UUID-here"

_FLAGS_AT = 24


def header_faults(image: Image) -> list[str]:
    """What stands in the way of complete_header, one sentence each."""
    found = [f"{library} is handed on" for library in image.reexported]
    if image.has_uuid:
        found.append("there is a UUID already")
    if [path for _, path in image.run_paths] != [PLACEHOLDER]:
        found.append("there is no place for a UUID, or another run path")
    return found


def complete_header(image: Image, data: bytearray) -> None:
    """Sets the flag and puts the UUID into its place in `data`, the bytes of `image` with everything else as it ships: the
    UUID is made from them, so that the same contents have the same one and other contents another."""
    ((uuid_at, _),) = image.run_paths
    (flags,) = struct.unpack_from("<I", data, _FLAGS_AT)
    struct.pack_into("<I", data, _FLAGS_AT, flags | _NO_REEXPORTED_DYLIBS)
    struct.pack_into("<2I16x", data, uuid_at, _LC_UUID, _UUID_COMMAND_SIZE)
    # Version 5 is the one whose bits come from this digest.
    made = uuid.UUID(bytes=hashlib.sha1(data).digest()[:16], version=5)
    struct.pack_into("<16s", data, uuid_at + 8, made.bytes)
