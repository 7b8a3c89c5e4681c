"""Checks which way includes point: every room may include itself and the rooms behind it, and nothing else.

The product's rooms stand in one line. The simulator and the product state for themselves what both must agree on, and so
do the stand-in host and the stand-in system; an include between them would make the test of one against the other worth
nothing. Only what both read of the platform, in angle brackets, is common ground.
"""

from __future__ import annotations

import re
import sys
from pathlib import Path

# Each room and what it may include besides itself.
MAY_INCLUDE: dict[str, tuple[str, ...]] = {
    "host": (),
    "convert": ("host",),
    "spotlight": ("convert", "host"),
    "plugin": ("spotlight", "convert", "host"),
    "simulator/macos": (),
    "simulator/host": (),
    "simulator/loader": (),
    "simulator/session": ("simulator/macos", "simulator/host", "simulator/loader"),
    "simulator/cli": ("simulator/session", "simulator/macos", "simulator/host", "simulator/loader"),
}

_OWN_FOLDERS = ("plugin", "host", "convert", "spotlight", "simulator", "tests", "fuzz", "bench")
_INCLUDE = re.compile(
    rf'^\s*#\s*include\s*(?:"([^"]+)"|<((?:{"|".join(_OWN_FOLDERS)})/[^>]+)>)', re.MULTILINE
)


def misdirected(tree: Path) -> list[str]:
    """Every include in the rooms of this tree that points the wrong way or at nothing, as 'file: sentence'."""
    found = []
    for room, others in MAY_INCLUDE.items():
        for path in sorted((tree / room).rglob("*")):
            if path.suffix not in (".h", ".cpp", ".def"):
                continue
            for include in _INCLUDE.finditer(path.read_text("utf-8")):
                target = include[1] or include[2]
                where = path.relative_to(tree)
                if not any(target.startswith(allowed + "/") for allowed in (room, *others)):
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
