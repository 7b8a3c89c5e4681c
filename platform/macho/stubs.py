"""Writes the assembly of a library that is there only to be linked against: empty labels under the listed names."""

from __future__ import annotations

import argparse
from pathlib import Path

from imports import Library, parse_list


def stub(library: Library) -> str:
    """Assembly that defines every symbol of the list and nothing else."""
    labels = "".join(f"\t.globl\t{entry.name}\n{entry.name}:\n\t.long\t0\n" for entry in library.imports)
    return f"\t.section\t__DATA,__data\n\t.p2align\t2\n{labels}"


def main() -> None:
    """Command line: stubs.py LIST OUTPUT."""
    parser = argparse.ArgumentParser(description=main.__doc__)
    parser.add_argument("list", type=Path)
    parser.add_argument("output", type=Path)
    arguments = parser.parse_args()
    library = parse_list(arguments.list.read_text("utf-8"), str(arguments.list))
    arguments.output.write_text(stub(library), "utf-8")


if __name__ == "__main__":
    main()
