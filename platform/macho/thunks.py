"""Settles what the product's object files leave open: who provides it, and through which thunk it is called.

Every undefined symbol must be defined by another of the files or stand on one of the lists of platform/imports;
anything else stops the build here, by name. For each import that is called a thunk is written, which finds the import's
pointer relative to its own place and so works wherever the library is loaded.
"""

from __future__ import annotations

import argparse
import subprocess
from dataclasses import dataclass
from pathlib import Path

from imports import Import, imports_by_name, read_lists

_PREFIX = "_thunk$"

_HEADER = """\
	.section	__TEXT,__text,regular,pure_instructions
	.macosx_version_min 10, 5
"""

# eax is free at the entry of every C function: arguments are on the stack, the result is still to come.
_THUNK = """\
	.private_extern	_thunk${name}
	.globl	_thunk${name}
	.p2align	4, 0x90
_thunk${name}:
	calll	L{number}$pb
L{number}$pb:
	popl	%eax
	jmpl	*_ptr${name}-L{number}$pb(%eax)
"""

_POINTER = """\
	.p2align	2
_ptr${name}:
	.long	{name}
"""


class OpenSymbolError(Exception):
    """A symbol that nobody provides, or one that is used otherwise than its list says."""


@dataclass(frozen=True)
class Symbol:
    """One line of an object file's symbol table, as far as it matters here."""

    file: str
    name: str
    is_undefined: bool
    is_weak_reference: bool


def parse_symbols(listing: str) -> list[Symbol]:
    """Reads what `llvm-nm -A -m` prints: a file, a colon, and words that end with the symbol's name."""
    symbols = []
    for line in listing.splitlines():
        file, _, rest = line.partition(": ")
        words = rest.split()
        is_undefined = "(undefined)" in words
        symbols.append(Symbol(Path(file).name, words[-1], is_undefined, is_undefined and "weak" in words))
    return symbols


def called_imports(symbols: list[Symbol], imports: dict[str, Import]) -> list[str]:
    """The imports for which thunks are needed, sorted. Raises OpenSymbolError where a symbol cannot be accepted."""
    defined = {symbol.name for symbol in symbols if not symbol.is_undefined}
    called = set()
    faults = []
    for symbol in symbols:
        if not symbol.is_undefined or symbol.name in defined:
            continue
        name = symbol.name.removeprefix(_PREFIX)
        if name not in imports:
            faults.append(f"{symbol.file} needs {name}, which is on no list in platform/imports")
        elif symbol.name != name:
            called.add(name)
            if not imports[name].is_function:
                faults.append(f"{symbol.file} calls {name}, which is listed as data")
        elif imports[name].is_weak != symbol.is_weak_reference:
            listed, declared = ("weak", "is not") if imports[name].is_weak else ("always there", "is")
            faults.append(f"{symbol.file} needs {name}, listed as {listed}, but the name {declared} declared weak")
    if faults:
        raise OpenSymbolError("\n".join(sorted(set(faults))))
    weak_calls = [name for name in called if imports[name].is_weak]
    if weak_calls:
        raise OpenSymbolError(f"weak functions are called, and no thunk for them is made here: {sorted(weak_calls)}")
    return sorted(called)


def thunks(names: list[str]) -> str:
    """Assembly with one thunk and one pointer for each name."""
    code = "".join(_THUNK.format(name=name, number=number) for number, name in enumerate(names))
    pointers = "".join(_POINTER.format(name=name) for name in names)
    return f"{_HEADER}{code}\n\t.section\t__DATA,__data\n{pointers}\n.subsections_via_symbols\n"


def main() -> None:
    """Command line: thunks.py --imports FOLDER --nm PROGRAM --output FILE OBJECT..."""
    parser = argparse.ArgumentParser(description=main.__doc__)
    parser.add_argument("--imports", type=Path, required=True)
    parser.add_argument("--nm", required=True)
    parser.add_argument("--output", type=Path, required=True)
    parser.add_argument("objects", nargs="+")
    arguments = parser.parse_args()
    imports = imports_by_name(read_lists(arguments.imports))
    listing = subprocess.run(
        [arguments.nm, "-A", "-m", *arguments.objects], check=True, capture_output=True, text=True
    ).stdout
    try:
        names = called_imports(parse_symbols(listing), imports)
    except OpenSymbolError as error:
        raise SystemExit(str(error)) from None
    arguments.output.write_text(thunks(names), "utf-8")


if __name__ == "__main__":
    main()
