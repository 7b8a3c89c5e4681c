#!/usr/bin/python3
"""The kept inputs of the fuzz targets. In corpus/NAME/ stand those that a person may want to look at, each under a name
that says what it is; everything else that a search has learned is packed into corpus/NAME.tar.xz, which `unpack` and tar
open.

    corpus.py unpack NAME FOLDER
    corpus.py replay PROGRAM NAME              run replay-NAME on all inputs of NAME
    corpus.py learn PROGRAM NAME [FOLDER...]   pack what fuzz-NAME needs of the pack and of what the folders add

`learn` lets the fuzzing engine leave out inputs that reach nothing new; those that have names stay as they are.
"""

from __future__ import annotations

import hashlib
import io
import shutil
import subprocess
import sys
import tarfile
import tempfile
from pathlib import Path

CORPUS = Path(__file__).resolve().parent / "corpus"


def pack(inputs: list[bytes], archive: Path) -> None:
    """Writes the inputs into an archive, each under the digest of its contents. The same inputs give the same bytes."""
    named = {hashlib.sha1(contents).hexdigest(): contents for contents in inputs}
    with tarfile.open(archive, "w:xz", format=tarfile.USTAR_FORMAT) as file:
        for name in sorted(named):
            member = tarfile.TarInfo(name)
            member.size = len(named[name])
            file.addfile(member, io.BytesIO(named[name]))


def unpack(archive: Path, folder: Path) -> int:
    """Writes every input of the archive into the folder, which is made where there is none. Answers how many."""
    folder.mkdir(parents=True, exist_ok=True)
    with tarfile.open(archive) as file:
        members = file.getmembers()
        for member in members:
            contents = file.extractfile(member)
            if contents is None or Path(member.name).name != member.name:
                raise ValueError(f"{archive}: {member.name} is no input")
            (folder / member.name).write_bytes(contents.read())
    return len(members)


def replay(program: str, name: str) -> int:
    """Runs the program on the named inputs and on the packed ones. Answers its exit code."""
    with tempfile.TemporaryDirectory() as folder:
        unpack(CORPUS / f"{name}.tar.xz", Path(folder))
        return subprocess.run([program, str(CORPUS / name), folder]).returncode


def learn(program: str, name: str, folders: list[str]) -> int:
    """Packs anew. Answers the exit code of the fuzzing engine, and changes nothing where that is not 0."""
    archive = CORPUS / f"{name}.tar.xz"
    with tempfile.TemporaryDirectory() as scratch:
        kept, packed = Path(scratch, "kept"), Path(scratch, "packed")
        shutil.copytree(CORPUS / name, kept)
        packed.mkdir()
        if archive.exists():
            unpack(archive, packed)
        named = {path.name for path in kept.iterdir()}
        code = subprocess.run([program, "-merge=1", str(kept), str(packed), *folders]).returncode
        if code == 0:
            pack([path.read_bytes() for path in kept.iterdir() if path.name not in named], archive)
    return code


def main(arguments: list[str]) -> int:
    """The command line above. Answers the exit code."""
    match arguments:
        case ["unpack", name, folder]:
            unpack(CORPUS / f"{name}.tar.xz", Path(folder))
            return 0
        case ["replay", program, name]:
            return replay(program, name)
        case ["learn", program, name, *folders]:
            return learn(program, name, folders)
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
