"""The folder that the examples of the pages run in: the files of examples/folder, with the dates and attributes that
examples/folder.tsv gives them.

    example_folder.py TREE FOLDER
"""

from __future__ import annotations

import os
import shutil
import sys
import tempfile
from dataclasses import dataclass
from datetime import datetime
from pathlib import Path


@dataclass
class File:
    name: str
    changed: datetime
    attributes: dict[str, list[str]]


def files(tree: Path) -> list[File]:
    found = []
    for line in (tree / "examples/folder.tsv").read_text("utf-8").splitlines()[1:]:
        name, changed, attributes = line.split("\t")
        pairs = (part.split("=", 1) for part in attributes.split("; ") if part)
        found.append(File(name, datetime.fromisoformat(changed.replace("Z", "+00:00")),
                          {key: values.split("|") for key, values in pairs}))
    return found


def place() -> Path:
    """An existing folder on a file system that keeps extended attributes of users."""
    for candidate in (tempfile.gettempdir(), "/var/tmp", os.getcwd()):
        with tempfile.NamedTemporaryFile(dir=candidate) as probe:
            try:
                os.setxattr(probe.name, "user.test", b"")
            except OSError:
                continue
            return Path(candidate)
    raise RuntimeError("no folder here keeps extended attributes of users; let TMPDIR name one that does")


def make(tree: Path, folder: Path) -> None:
    """Makes the folder where nothing is yet. The file system must keep extended attributes of users."""
    shutil.copytree(tree / "examples/folder", folder, copy_function=shutil.copyfile)
    for file in files(tree):
        for key, values in file.attributes.items():
            os.setxattr(folder / file.name, f"user.{key}", "\n".join(values).encode())
    # What is made inside a folder changes its date, so the innermost come first.
    for file in sorted(files(tree), key=lambda file: file.name.count("/"), reverse=True):
        os.utime(folder / file.name, (file.changed.timestamp(),) * 2)


if __name__ == "__main__":
    make(Path(sys.argv[1]), Path(sys.argv[2]))
