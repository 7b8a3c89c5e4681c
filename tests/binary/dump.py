#!/usr/bin/python3
"""Writes what can be seen of the finished library from outside, as text to be read and compared: exports, libraries,
imports, flags, load commands, sections and the property list, without addresses and sizes.

It asks LLVM's tools and shares nothing with the programs that build the library. After a change that is meant:

    tests/binary/dump.py dist/Spotlight.dylib >tests/binary/Spotlight.dylib.txt
"""

from __future__ import annotations

import plistlib
import re
import subprocess
import sys
from dataclasses import dataclass
from pathlib import Path


def objdump(library: Path, *options: str) -> str:
    """What llvm-objdump prints about a Mach-O file."""
    command = ["llvm-objdump-14", "--macho", *options, str(library)]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


@dataclass(frozen=True, order=True)
class Import:
    """One symbol that the loader binds, and the last part of the name of the library it comes from."""

    library: str
    symbol: str
    is_weak: bool


def bound_imports(library: Path) -> list[Import]:
    """Every symbol in the bind table, once, sorted."""
    found = set()
    for line in objdump(library, "--bind").splitlines():
        match = re.fullmatch(r"__\w+\s+__\w+\s+0x\w+\s+pointer\s+0\s+(\S+)\s+(\S+)( \(weak_import\))?\s*", line)
        if match:
            found.add(Import(match[1], match[2], match[3] is not None))
        elif line.startswith("__"):
            raise ValueError(f"a bind in an unknown form: {line}")
    return sorted(found)


def exports(library: Path) -> list[str]:
    """Every name in the export trie."""
    return re.findall(r"^0x\w+\s+(.+)$", objdump(library, "--exports-trie"), re.MULTILINE)


def libraries(library: Path) -> list[str]:
    """The library's own name, then those it loads, each with its versions."""
    return [line.strip() for line in objdump(library, "--dylibs-used").splitlines()[1:]]


def header_flags(library: Path) -> list[str]:
    """The flags in the header."""
    header = objdump(library, "--private-headers").split("Load command 0")[0]
    return header.splitlines()[-1].split()[7:]


def load_commands(library: Path) -> list[str]:
    """The kinds of the load commands in their order; a segment with its protection, a version with its number."""
    found = []
    for block in re.split(r"^Load command \d+$", objdump(library, "--private-headers"), flags=re.MULTILINE)[1:]:
        fields = dict(re.findall(r"^ *(\w+) (\S+)", block.split("Section")[0], re.MULTILINE))
        details = [fields[key] for key in ("segname", "maxprot", "initprot", "version", "sdk") if key in fields]
        found.append(" ".join([fields["cmd"], *details]))
    return found


def uuid(library: Path) -> str:
    """The UUID that crash reports call it by."""
    found = re.search(r"^ *uuid (\S+)$", objdump(library, "--private-headers"), re.MULTILINE)
    if found is None:
        raise ValueError("there is no UUID")
    return found[1]


def sections(library: Path) -> list[str]:
    """Each section with its kind and attributes."""
    found = []
    for block in objdump(library, "--private-headers").split("\nSection\n")[1:]:
        fields = dict(re.findall(r"^ *(\w+) (.+)$", block.split("Load command")[0], re.MULTILINE))
        kind = f"{fields['type']} {fields['attributes']}".replace(" (none)", "")
        found.append(f"{fields['segname']},{fields['sectname']} {kind}")
    return found


def property_list(library: Path) -> dict[str, str]:
    """The embedded property list."""
    lines = objdump(library, "--section=__TEXT,__info_plist").splitlines()
    text = "\n".join(lines[next(n for n, line in enumerate(lines) if line.startswith("<?xml")) :])
    return plistlib.loads(text.encode())


def dump(library: Path) -> str:
    """The whole text."""
    imports = [f"{i.library} {i.symbol}{' (weak)' if i.is_weak else ''}" for i in bound_imports(library)]
    properties = [f"{key}: {value}" for key, value in sorted(property_list(library).items())]
    chapters = {
        "exports": exports(library),
        "libraries": libraries(library),
        "header flags": header_flags(library),
        "load commands": load_commands(library),
        "sections": sections(library),
        "property list": properties,
        "imports": imports,
    }
    return "\n".join(f"{title}\n" + "".join(f"  {line}\n" for line in lines) for title, lines in chapters.items())


if __name__ == "__main__":
    print(dump(Path(sys.argv[1])), end="")
