"""Checks which way includes point: every room may include itself and the rooms behind it, and nothing else.

The product's rooms stand in one line; those inside the stand-in system stand on each other likewise. The simulator and the product state for themselves what both must agree on, and so
do the stand-in host and the stand-in system; an include between them would make the test of one against the other worth
nothing. Only what both read of the platform, in angle brackets, is common ground.
"""

from __future__ import annotations

import re
import sys
from pathlib import Path

# Inside the stand-in system: what every part of it stands on, and what most do.
_GROUND = ("simulator/macos/control",)
_FOUNDATION = "simulator/macos/CoreFoundation"
_METADATA = "simulator/macos/CoreServices/metadata"

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
    "simulator/host": (),
    "simulator/loader": (),
    "simulator/session": ("simulator/macos", "simulator/host", "simulator/loader"),
    "simulator/validate": ("simulator/session", "simulator/macos", "simulator/host", "simulator/loader"),
    "simulator/cli": ("simulator/session", "simulator/macos", "simulator/host", "simulator/loader"),
    "simulator/language": ("simulator/cli", "simulator/session", "simulator/macos", "simulator/host"),
}

_OWN_FOLDERS = ("plugin", "host", "convert", "spotlight", "simulator", "tests", "fuzz", "bench")
_INCLUDE = re.compile(
    rf'^\s*#\s*include\s*(?:"([^"]+)"|<((?:{"|".join(_OWN_FOLDERS)})/[^>]+)>)', re.MULTILINE
)


def room_of(path: str) -> str | None:
    """The innermost room that a file is in."""
    return max((room for room in MAY_INCLUDE if path.startswith(room + "/")), key=len, default=None)


def _is_in(target: str, allowed: str) -> bool:
    """Whether a file is in a room, itself or, where the room is only a folder of rooms, one of those."""
    return target.startswith(allowed + "/") and (allowed not in MAY_INCLUDE or room_of(target) == allowed)


def misdirected(tree: Path) -> list[str]:
    """Every include in the rooms of this tree that points the wrong way or at nothing, as 'file: sentence'."""
    found = []
    for room, others in MAY_INCLUDE.items():
        for path in sorted((tree / room).rglob("*")):
            where = path.relative_to(tree)
            if path.suffix not in (".h", ".cpp", ".def") or room_of(str(where)) != room:
                continue
            for include in _INCLUDE.finditer(path.read_text("utf-8")):
                target = include[1] or include[2]
                if not any(_is_in(target, allowed) for allowed in (room, *others)):
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
