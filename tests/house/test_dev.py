"""./dev from any folder, without an environment and without a terminal: the packages it asks for, the archive it makes."""

from __future__ import annotations

import hashlib
import os
import re
import subprocess
import tarfile
import unittest
from pathlib import Path

_TREE = Path(os.environ["SOURCE_TREE"])


def _dev(*arguments: str) -> subprocess.CompletedProcess[str]:
    return subprocess.run(
        [str(_TREE / "dev"), *arguments],
        cwd="/",
        env={"PATH": "/usr/bin:/bin"},
        stdin=subprocess.DEVNULL,
        capture_output=True,
        text=True,
    )


class Dev(unittest.TestCase):
    def test_every_package_has_a_group_and_a_reason(self) -> None:
        grouped = False
        groups: set[str] = set()
        for line in (_TREE / "dev.packages").read_text("utf-8").splitlines():
            if line.startswith("["):
                self.assertRegex(line, r"^\[[a-z]+\] \w")
                self.assertNotIn(line.split("]")[0], groups, "a group stands here twice")
                groups.add(line.split("]")[0])
                grouped = True
            elif line and not line.startswith("#"):
                self.assertTrue(grouped, line)
                self.assertRegex(line, r"^[a-z0-9.+-]+(:i386)? +\w")

    def test_every_group_of_packages_is_one_that_a_command_asks_for(self) -> None:
        groups = re.findall(r"^\[(\w+)\]", (_TREE / "dev.packages").read_text("utf-8"), re.MULTILINE)
        asked = set(re.findall(r"^ +require (.+)$", (_TREE / "dev").read_text("utf-8"), re.MULTILINE))
        self.assertEqual({group for line in asked for group in line.split()}, set(groups))

    def test_two_packages_of_the_same_files_are_the_same_bytes(self) -> None:
        digests = set()
        for _ in range(2):
            packed = _dev("package")
            self.assertEqual(packed.returncode, 0, packed.stderr)
            made = re.search(r"^dev: (dist/Spotlight-[0-9.]+\.tar\.gz) is made$", packed.stderr, re.MULTILINE)
            assert made is not None, packed.stderr
            archive = _TREE / made[1]
            digests.add(hashlib.sha256(archive.read_bytes()).hexdigest())
        self.assertEqual(len(digests), 1)
        with tarfile.open(archive) as opened:
            names = opened.getnames()
            self.assertEqual({(entry.uid, entry.gid, entry.mtime) for entry in opened}, {(0, 0, 0)})
        folder = archive.name.removesuffix(".tar.gz")
        for part in ("Spotlight.dylib", "LICENSE", "README.md", "CHANGELOG.md", "docs/README.md", "examples/README.md"):
            self.assertIn(f"{folder}/{part}", names)


if __name__ == "__main__":
    unittest.main()
