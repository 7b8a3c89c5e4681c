"""The archives that people receive: pack.py TREE LIBRARY SITE DATE FOLDER makes them in FOLDER, as .zip and as .tar.gz.

The same commit gives the same bytes: the files are in the order of their names, and each has the date of the commit,
which is DATE in seconds since 1970, and nothing of the machine's.
"""

from __future__ import annotations

import gzip
import hashlib
import io
import re
import sys
import tarfile
import zipfile
from datetime import datetime, timezone
from pathlib import Path

from plain_text import plain_text

_README = "docs/guides/installing"
_UNIX = 3


def _files_below(folder: Path) -> dict[str, bytes]:
    return {str(path.relative_to(folder)): path.read_bytes() for path in folder.rglob("*") if path.is_file()}


def contents(tree: Path, library: Path, site: Path) -> dict[str, bytes]:
    """What the archive holds, by place."""
    readme = plain_text((tree / f"{_README}.md").read_text("utf-8"), str(Path(_README).parent))
    files = {
        "Spotlight.dylib": library.read_bytes(),
        "README.txt": readme.encode(),
        "LICENSE.txt": (tree / "LICENSE").read_bytes(),
        "CHANGELOG.txt": plain_text((tree / "CHANGELOG.md").read_text("utf-8"), "").encode(),
    }
    files |= {f"site/{name}": data for name, data in _files_below(site).items()}
    # The page about the examples is in the site.
    files |= {f"examples/{name}": data for name, data in _files_below(tree / "examples").items() if not name.endswith(".md")}
    sums = [f"{hashlib.sha256(data).hexdigest()}  {name}\n" for name, data in sorted(files.items())]
    return files | {"SHA256SUMS": "".join(sums).encode()}


def _tar(files: dict[str, bytes], date: int) -> bytes:
    packed = io.BytesIO()
    with tarfile.open(fileobj=packed, mode="w", format=tarfile.USTAR_FORMAT) as archive:
        for name, data in sorted(files.items()):
            entry = tarfile.TarInfo(name)
            entry.size, entry.mtime, entry.mode = len(data), date, _mode(name)
            archive.addfile(entry, io.BytesIO(data))
    return gzip.compress(packed.getvalue(), mtime=date)


def _zip(files: dict[str, bytes], date: int) -> bytes:
    packed = io.BytesIO()
    # Dates in such archives are those of some clock; here it is that of Greenwich.
    stamp = datetime.fromtimestamp(date, timezone.utc).timetuple()[:6]
    with zipfile.ZipFile(packed, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for name, data in sorted(files.items()):
            entry = zipfile.ZipInfo(name, stamp)
            entry.compress_type, entry.create_system = zipfile.ZIP_DEFLATED, _UNIX
            entry.external_attr = (0o100000 | _mode(name)) << 16
            archive.writestr(entry, data)
    return packed.getvalue()


def _mode(name: str) -> int:
    return 0o755 if name.endswith(".dylib") else 0o644


def main(tree: Path, library: Path, site: Path, date: int, folder: Path) -> None:
    """Writes both archives and says where."""
    [version] = re.findall(r"^project\(Spotlight VERSION ([0-9.]+)", (tree / "CMakeLists.txt").read_text("utf-8"), re.MULTILINE)
    name = f"Spotlight-{version}"
    files = {f"{name}/{place}": data for place, data in contents(tree, library, site).items()}
    for archive, data in ((f"{name}.zip", _zip(files, date)), (f"{name}.tar.gz", _tar(files, date))):
        (folder / archive).write_bytes(data)
        print(f"dev: {folder.name}/{archive} is made")


if __name__ == "__main__":
    main(Path(sys.argv[1]), Path(sys.argv[2]), Path(sys.argv[3]), int(sys.argv[4]), Path(sys.argv[5]))
