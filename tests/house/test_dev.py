"""./dev answers from any folder, without an environment and without a terminal, and says what is wrong in one line."""

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
    def test_help_names_every_command(self) -> None:
        helped = _dev("help")
        self.assertEqual(helped.returncode, 0)
        known = re.search(r"^run \| (.+?)\) ", (_TREE / "dev").read_text("utf-8"), re.MULTILINE)
        assert known is not None
        for command in ["run", "check-sdk", *known[1].split(" | ")]:
            self.assertRegex(helped.stdout, rf"(?m)^  {command} ")

    def test_no_command_gets_the_help_and_exit_code_2(self) -> None:
        asked = _dev()
        self.assertEqual((asked.returncode, asked.stdout), (2, ""))
        self.assertIn("usage: ./dev COMMAND", asked.stderr)

    def test_an_unknown_command_gets_one_line_and_exit_code_2(self) -> None:
        asked = _dev("tset")
        self.assertEqual(asked.returncode, 2)
        self.assertEqual(asked.stderr, "dev: there is no command 'tset'; ./dev help lists them\n")

    def test_every_package_has_a_group_and_a_reason(self) -> None:
        grouped = False
        for line in (_TREE / "dev.packages").read_text("utf-8").splitlines():
            if line.startswith("["):
                self.assertRegex(line, r"^\[[a-z]+\] \w")
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
            made = re.fullmatch(r"dev: (dist/Spotlight-[0-9.]+\.tar\.gz) is made\n", packed.stderr)
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
