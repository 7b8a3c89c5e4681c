"""Checks which way includes point: every room may include itself and the rooms behind it, and nothing else.

The product's rooms stand in one line; those inside the stand-in system and inside the stand-in host stand on each other
likewise. The simulator and the product state for themselves what both must agree on, and so do the stand-in host and
the stand-in system; an include between them would make the test of one against the other worth nothing. Only what both read of the platform, in angle brackets, is common ground.
"""

from __future__ import annotations

import re
import sys
from collections.abc import Iterator
from pathlib import Path

# Inside the stand-in system: what every part of it stands on, and what most do.
_GROUND = ("simulator/macos/control",)
_FOUNDATION = "simulator/macos/CoreFoundation"
_METADATA = "simulator/macos/CoreServices/metadata"

# Inside the stand-in host: each floor stands on those before it; services and program are neighbours on the last.
_HOST = "simulator/host"
_HOST_FLOORS = tuple(f"{_HOST}/{room}" for room in ("ground", "entities", "declarations", "classes", "runtime"))
_HOST_ROOMS = (*_HOST_FLOORS, f"{_HOST}/services", f"{_HOST}/program")

# Each room and what it may include besides itself. A room within a room stands for itself.
MAY_INCLUDE: dict[str, tuple[str, ...]] = {
    "host": (),
    "convert": ("host",),
    "spotlight": ("convert", "host"),
    "plugin": ("spotlight", "convert", "host"),
    "simulator/macos/control": (),
    "simulator/macos/CoreFoundation": _GROUND,
    "simulator/macos/ApplicationServices": (_FOUNDATION, *_GROUND),
    "simulator/macos/Carbon": (_FOUNDATION, *_GROUND),
    "simulator/macos/CoreServices": (_FOUNDATION, *_GROUND),
    f"{_METADATA}/schema": (_FOUNDATION, *_GROUND),
    f"{_METADATA}/items": (f"{_METADATA}/schema", _FOUNDATION, *_GROUND),
    f"{_METADATA}/expression": (f"{_METADATA}/items", _FOUNDATION),
    f"{_METADATA}/store": (f"{_METADATA}/items", _FOUNDATION, *_GROUND),
    f"{_METADATA}/query": (
        f"{_METADATA}/store", f"{_METADATA}/expression", f"{_METADATA}/items", _FOUNDATION, *_GROUND
    ),
    **{room: _HOST_FLOORS[:floor] for floor, room in enumerate(_HOST_FLOORS)},
    f"{_HOST}/services": _HOST_FLOORS,
    f"{_HOST}/program": _HOST_FLOORS,
    _HOST: _HOST_ROOMS,
    "simulator/loader": (),
    "simulator/session": ("simulator/macos", _HOST, *_HOST_ROOMS, "simulator/loader"),
    "simulator/validate": ("simulator/session", "simulator/macos", _HOST, *_HOST_ROOMS, "simulator/loader"),
    "simulator/cli": ("simulator/session", "simulator/macos", _HOST, *_HOST_ROOMS, "simulator/loader"),
    "simulator/language": ("simulator/cli", "simulator/session", "simulator/macos", _HOST, *_HOST_ROOMS),
}

_OWN_FOLDERS = ("plugin", "host", "convert", "spotlight", "simulator", "tests", "fuzz", "bench")
_INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+/[^>]+)>)', re.MULTILINE)


def room_of(path: str) -> str | None:
    """The innermost room that a file is in."""
    return max((room for room in MAY_INCLUDE if path.startswith(room + "/")), key=len, default=None)


def _is_in(target: str, allowed: str) -> bool:
    """Whether a file is in a room, itself or, where the room is only a folder of rooms, one of those."""
    return target.startswith(allowed + "/") and (allowed not in MAY_INCLUDE or room_of(target) == allowed)


def includes_in(tree: Path) -> Iterator[tuple[str, str]]:
    """The includes of a tree: a file, and what it includes of this tree's folders or, below platform, of the system."""
    for folder in _OWN_FOLDERS:
        for path in sorted((tree / folder).rglob("*")):
            if path.suffix not in (".h", ".cpp", ".def"):
                continue
            for own, other in _INCLUDE.findall(path.read_text("utf-8")):
                if own or other.split("/")[0] in _OWN_FOLDERS:
                    yield str(path.relative_to(tree)), own or other
                elif (tree / "platform/include" / other).is_file():
                    yield str(path.relative_to(tree)), f"platform/include/{other}"


def misdirected(tree: Path) -> list[str]:
    """Every include in the rooms of this tree that points the wrong way or at nothing, as 'file: sentence'."""
    found = []
    for where, target in includes_in(tree):
        room = room_of(where)
        if room is None or target.startswith("platform/include/"):
            continue
        if not any(_is_in(target, allowed) for allowed in (room, *MAY_INCLUDE[room])):
            found.append(f"{where}: may not include {target}")
        elif not (tree / target).is_file():
            found.append(f"{where}: includes {target}, which does not exist")
    return found


def main() -> None:
    """Command line: include_directions.py TREE. Prints what is wrong; exits with 1 if anything is."""
    found = misdirected(Path(sys.argv[1]))
    print("\n".join(found), end="\n" if found else "")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
