"""Turns the assembly that clang writes for i386 macOS into a form that the linker gets right.

Two things are rewritten; everything else stays as it is.

Non-lazy pointers. The compiler puts the address of anything outside the file into a slot of __IMPORT,__pointers, which
the linker copies without binding it. The slots move to __DATA,__data as plain words, which it does bind or rebase. Each
gets a real label in place of an assembler-local one: with local labels all slots share one atom, and the exception
tables' references to them lose their offset.

Calls of imports. For these the linker would make stubs that jump to absolute addresses. They go to thunks of our own
(thunks.py) that find the import relative to their own place.
"""

from __future__ import annotations

import argparse
import re
from pathlib import Path

from imports import Import, imports_by_name, read_lists

_SLOT_NAME = re.compile(r"L([\w.$]+)\$non_lazy_ptr")
_SLOT = re.compile(
    r"^L(?P<symbol>[\w.$]+)\$non_lazy_ptr:\n\s+\.indirect_symbol\s+(?P=symbol)\n\s+\.long\s+0\n", re.MULTILINE
)
_POINTER_SECTION = re.compile(r"^\s+\.section\s+__IMPORT,__pointers,non_lazy_symbol_pointers$", re.MULTILINE)
_BRANCH = re.compile(r"^(?P<before>\s+(?:calll?|j[a-z]+)\s+)(?P<symbol>[\w.$]+)", re.MULTILINE)
_INSTRUCTION = re.compile(r"^\s+[a-z]\w*\s+(?P<operands>[^#\n]+)", re.MULTILINE)
_SYMBOL = re.compile(r"[A-Za-z_][\w.$]*")


class RewriteError(Exception):
    """Assembly in a form that this program does not know."""


def rewrite(assembly: str, imports: dict[str, Import]) -> str:
    """The same program, in a form that the linker gets right. Raises RewriteError where that cannot be promised."""
    text = _POINTER_SECTION.sub("\t.section\t__DATA,__data", assembly)
    text = _SLOT.sub(r"\t.p2align\t2\n_ptr$\g<symbol>:\n\t.long\t\g<symbol>\n", text)
    text = _SLOT_NAME.sub(r"_ptr$\1", text)

    def to_thunk(match: re.Match[str]) -> str:
        symbol = match["symbol"]
        return f"{match['before']}_thunk${symbol}" if symbol in imports else match[0]

    text = _BRANCH.sub(to_thunk, text)
    _refuse_what_is_left(text, imports)
    return text


def _refuse_what_is_left(text: str, imports: dict[str, Import]) -> None:
    for leftover in (".indirect_symbol", "__IMPORT,", "__symbol_stub", "__mod_init_func"):
        if leftover in text:
            raise RewriteError(f"'{leftover}' is in the assembly, and nothing here knows what to do with it")
    for instruction in _INSTRUCTION.finditer(text):
        for symbol in _SYMBOL.findall(instruction["operands"]):
            if symbol in imports:
                raise RewriteError(f"an instruction names the import {symbol} itself: {instruction[0].strip()}")


def main() -> None:
    """Command line: rewrite.py --imports FOLDER INPUT OUTPUT."""
    parser = argparse.ArgumentParser(description=main.__doc__)
    parser.add_argument("--imports", type=Path, required=True)
    parser.add_argument("input", type=Path)
    parser.add_argument("output", type=Path)
    arguments = parser.parse_args()
    imports = imports_by_name(read_lists(arguments.imports))
    try:
        text = rewrite(arguments.input.read_text("utf-8"), imports)
    except RewriteError as error:
        raise SystemExit(f"{arguments.input}: {error}") from None
    arguments.output.write_text(text, "utf-8")


if __name__ == "__main__":
    main()
