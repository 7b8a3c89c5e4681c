"""The last step of the build: refuses a library that would not load or that would run wild, marks the weak imports, which
the linker records as strong, and completes the header. Nothing moves in the file."""

from __future__ import annotations

import argparse
import os
from pathlib import Path

from header import complete_header, header_faults
from image import Image, ImageError, read_image
from imports import Library, imports_by_name, read_lists

_WEAK_IMPORT_FLAG = 0x01
_WEAK_REFERENCE_BIT = 0x40

# What the linker makes only out of code or data that went past the rewriting, and code that runs before the entry point.
_REFUSED_SECTIONS = ("__stubs", "__stub_helper", "__la_symbol_ptr", "__pointers", "__mod_init_func", "__mod_term_func")


def faults(image: Image, libraries: list[Library], export: str) -> list[str]:
    """Everything that is wrong with the library, one sentence each."""
    found = header_faults(image)
    # The linker puts them anywhere, with their zeros in the file; loaders and tools expect them last in a segment.
    found += [f"{section} is filled with zeros" for section in image.zero_filled]
    for section in image.sections:
        if section.split(",")[1] in _REFUSED_SECTIONS:
            found.append(f"there is a section {section}")
    if image.exports != [export]:
        found.append(f"the exports are {image.exports}")
    if image.lazy_bind_size:
        found.append("there are lazy binds")
    if not image.rebased_segments <= {"__DATA"}:
        found.append(f"words are rebased in {sorted(image.rebased_segments)}")
    provider = {entry.name: library.install_name for library in libraries for entry in library.imports}
    bound = {bind.symbol for bind in image.binds}
    for symbol in image.undefined:
        if symbol.name not in bound and symbol.name != "dyld_stub_binder":
            found.append(f"{symbol.name} is never bound")
    for bind in sorted(set((bind.symbol, bind.ordinal, image.segments[bind.segment]) for bind in image.binds)):
        name, ordinal, segment = bind
        library = image.libraries[ordinal - 1] if 0 < ordinal <= len(image.libraries) else f"ordinal {ordinal}"
        if library != provider.get(name):
            found.append(f"{name} is bound from {library}, and the lists say {provider.get(name)}")
        if segment != "__DATA":
            found.append(f"{name} is bound in {segment}")
    return found


def mark_weak_imports(image: Image, libraries: list[Library], data: bytearray) -> None:
    """Sets the weak flags of the lists in `data`, the bytes of `image`: in the binds and in the symbol table."""
    imports = imports_by_name(libraries)
    for bind in image.binds:
        if imports[bind.symbol].is_weak:
            data[bind.flags_at] |= _WEAK_IMPORT_FLAG
    for symbol in image.undefined:
        if imports[symbol.name].is_weak:
            data[symbol.description_at] |= _WEAK_REFERENCE_BIT


def finished(image: Image, libraries: list[Library]) -> bytes:
    """The library as it ships. The header comes last, since it has a digest of everything else."""
    data = bytearray(image.data)
    mark_weak_imports(image, libraries, data)
    complete_header(image, data)
    return bytes(data)


def main() -> None:
    """Command line: finish.py --imports FOLDER --export SYMBOL INPUT OUTPUT."""
    parser = argparse.ArgumentParser(description=main.__doc__)
    parser.add_argument("--imports", type=Path, required=True)
    parser.add_argument("--export", required=True)
    parser.add_argument("input", type=Path)
    parser.add_argument("output", type=Path)
    arguments = parser.parse_args()
    libraries = read_lists(arguments.imports)
    try:
        image = read_image(arguments.input.read_bytes())
    except ImageError as error:
        raise SystemExit(f"{arguments.input}: {error}") from None
    wrong = faults(image, libraries, arguments.export)
    if wrong:
        raise SystemExit("\n".join(f"{arguments.input}: {sentence}" for sentence in wrong))
    # Written beside the target and renamed, so that nobody ever loads half a library.
    arguments.output.parent.mkdir(parents=True, exist_ok=True)
    beside = arguments.output.with_name(f".{arguments.output.name}.{os.getpid()}")
    beside.write_bytes(finished(image, libraries))
    beside.chmod(0o755)
    beside.rename(arguments.output)


if __name__ == "__main__":
    main()
