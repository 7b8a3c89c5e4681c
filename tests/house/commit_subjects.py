"""Checks that the subject of a commit fits a line. It speaks of commits that are younger than itself; what was written
before stays as it is."""

from __future__ import annotations

import subprocess
import sys
from pathlib import Path

LONGEST = 72

_THIS_FILE = "tests/house/commit_subjects.py"


def _git(tree: Path, *arguments: str) -> list[str]:
    """The lines that git says of the tree; none where it is no repository of its own."""
    ran = subprocess.run(["git", "-C", str(tree), *arguments], capture_output=True, text=True, check=False)
    return ran.stdout.splitlines() if ran.returncode == 0 else []


def too_long(tree: Path, since: str = _THIS_FILE) -> list[str]:
    """The subjects of the commits after the one that brought the file `since`, where they are longer than a line."""
    if _git(tree, "rev-parse", "--show-toplevel") != [str(tree)]:
        return []
    first = _git(tree, "log", "--no-merges", "--diff-filter=A", "--format=%H", "--", since)
    if not first:
        return []
    subjects = _git(tree, "log", "--no-merges", "--format=%s", f"{first[-1]}..HEAD")
    return [subject for subject in subjects if len(subject) > LONGEST]


if __name__ == "__main__":
    found = too_long(Path(sys.argv[1]).resolve())
    for subject in found:
        print(f"a commit's subject is longer than {LONGEST} characters: {subject}", file=sys.stderr)
    sys.exit(1 if found else 0)
