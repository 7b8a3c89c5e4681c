"""The archives that ./dev package makes: what is in them, and that they tell nobody anything that is not so. That two
packings are the same bytes, that the site works in a browser and that the library passes is tried by
./dev package --check."""

from __future__ import annotations

import hashlib
import os
import re
import struct
import subprocess
import sys
import tarfile
import tempfile
import time
import unittest
import zipfile
from calendar import timegm
from pathlib import Path

_TREE = Path(os.environ["SOURCE_TREE"])
_LIBRARY = Path(os.environ["DYLIB"])
sys.path.insert(0, str(_TREE / "docs/site"))

import contents  # noqa: E402
import site_pages  # noqa: E402

_HEADER = struct.Struct("<7I")
# What codesign adds to the load commands: its kind, its size, and where the signature lies.
_SIGNATURE_COMMAND = 16


def _first_section() -> int:
    """Where in the file the first section begins: load commands can grow up to there."""
    dump = subprocess.run(["llvm-otool-14", "-l", str(_LIBRARY)], check=True, capture_output=True, text=True).stdout
    return min(int(offset) for offset in re.findall(r"^ +offset (\d+)$", dump, re.MULTILINE) if int(offset))


class Package(unittest.TestCase):
    tar: dict[str, tarfile.TarInfo]
    files: dict[str, bytes]
    zip: dict[str, zipfile.ZipInfo]
    folder: Path

    @classmethod
    def setUpClass(cls) -> None:
        command = [str(_TREE / "dev"), "package"]
        packed = subprocess.run(command, cwd="/", env={"PATH": "/usr/bin:/bin"}, capture_output=True, text=True, check=False)
        if packed.returncode:
            raise AssertionError(packed.stderr)
        made = re.findall(r"^dev: (dist/Spotlight-[0-9.]+)\.(zip|tar\.gz) is made$", packed.stderr, re.MULTILINE)
        [(name, _), _] = made
        temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(temporary.cleanup)
        with tarfile.open(_TREE / f"{name}.tar.gz") as archive:
            cls.tar = {entry.name: entry for entry in archive}
            archive.extractall(temporary.name)
        with zipfile.ZipFile(_TREE / f"{name}.zip") as archive:
            cls.zip = {entry.filename: entry for entry in archive.infolist()}
            cls.files = {entry: archive.read(entry) for entry in cls.zip}
        cls.folder = Path(temporary.name, Path(name).name)

    def test_both_archives_hold_the_same_files(self) -> None:
        unpacked = {f"{self.folder.name}/{path.relative_to(self.folder)}": path.read_bytes()
                    for path in self.folder.rglob("*") if path.is_file()}
        self.assertEqual(unpacked.keys(), self.files.keys())
        self.assertEqual(unpacked, self.files)

    def test_they_hold_what_a_host_programmer_needs(self) -> None:
        places = ("Spotlight.dylib", "README.txt", "CHANGELOG.txt", "LICENSE.txt", "SHA256SUMS", "site/index.html",
                  "site/docs/reference/MDQueryQTX.html", "examples/live-query.bas", "examples/toolkit/QueryText.bas",
                  "examples/folder/letter.txt", "examples/folder.tsv")
        for place in places:
            self.assertTrue((self.folder / place).is_file(), place)

    def test_the_library_is_the_one_that_was_built(self) -> None:
        self.assertTrue((self.folder / "Spotlight.dylib").read_bytes() == _LIBRARY.read_bytes())

    def test_every_file_has_the_date_of_the_commit_and_nothing_of_this_machine(self) -> None:
        [date] = {entry.mtime for entry in self.tar.values()}
        ask = ["git", "-C", str(_TREE), "log", "-1", "--format=%ct"]
        asked = subprocess.run(ask, capture_output=True, text=True, check=False)
        if asked.returncode == 0 and (_TREE / ".git").exists():
            self.assertEqual(date, int(asked.stdout))
        self.assertTrue(365 * 24 * 3600 < date <= time.time(), date)
        self.assertEqual({timegm((*entry.date_time, 0, 0, 0)) for entry in self.zip.values()}, {date - date % 2})
        self.assertEqual({(entry.uid, entry.gid, entry.uname, entry.gname) for entry in self.tar.values()}, {(0, 0, "", "")})

    def test_each_file_has_its_sum(self) -> None:
        sums = dict(line.split("  ")[::-1] for line in (self.folder / "SHA256SUMS").read_text("utf-8").splitlines())
        found = {str(path.relative_to(self.folder)): hashlib.sha256(path.read_bytes()).hexdigest()
                 for path in self.folder.rglob("*") if path.is_file() and path.name != "SHA256SUMS"}
        self.assertEqual(sums, found)

    def test_no_link_leads_nowhere(self) -> None:
        site = self.folder / "site"
        pages = site_pages.read(site)
        self.assertGreater(len(pages), 40)
        self.assertEqual(site_pages.broken(site, pages), [])
        for text in self.folder.glob("*.txt"):
            with self.subTest(text.name):
                self.assertNotRegex(text.read_text("utf-8"), r"\]\(")
                for place in re.findall(r"\b(?:site|examples)/[\w./-]+\w", text.read_text("utf-8")):
                    self.assertTrue((self.folder / place).is_file(), place)

    def test_there_is_no_page_for_those_who_work_on_the_plugin(self) -> None:
        theirs = contents.pages(_TREE, contents.EVERYBODY_ELSE)
        self.assertGreater(len(theirs), 5)
        for page in theirs:
            self.assertFalse((self.folder / f"site/{page}.html").exists(), page)
        searched = (self.folder / "site/searchindex.js").read_text("utf-8")
        for page in theirs:
            self.assertNotIn(f'"{page}"', searched)

    def test_the_readme_names_every_file_and_folder_beside_it(self) -> None:
        readme = (self.folder / "README.txt").read_text("utf-8")
        for path in self.folder.iterdir():
            if path.name != "README.txt":
                self.assertIn(f"`{path.name}`", readme)

    def test_the_library_has_room_for_a_signature(self) -> None:
        library = (self.folder / "Spotlight.dylib").read_bytes()
        size_of_commands = _HEADER.unpack_from(library)[5]
        self.assertLessEqual(_HEADER.size + size_of_commands + _SIGNATURE_COMMAND, _first_section())


if __name__ == "__main__":
    unittest.main()
