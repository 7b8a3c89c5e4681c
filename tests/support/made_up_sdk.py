"""The folder of an SDK, put together from the platform's headers of this tree, arranged as an SDK has them. No real one
can be had here."""

from __future__ import annotations

import shutil
from pathlib import Path


def lay_out(tree: Path, sdk: Path, frameworks: str = "Frameworks", include: str = "include") -> None:
    """Arranges the headers below these two folders of the SDK."""
    for headers in (tree / "platform" / "include").iterdir():
        shutil.copytree(headers, sdk / frameworks / f"{headers.name}.framework" / "Headers")
    shutil.copytree(tree / "platform" / "libc", sdk / include)
