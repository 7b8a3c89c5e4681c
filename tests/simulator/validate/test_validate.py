"""The validator finds nothing wrong with what is built, something with each of many damaged copies, and takes no check
for made that was not."""

from __future__ import annotations

import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

from damages import DAMAGES, Library

_PROGRAM = os.environ["PROGRAM"]
_NATIVE = os.environ["NATIVE"]
_IMPORTS = os.environ["IMPORTS"]
_LIBRARY = Path(os.environ["DYLIB"])


def _validate(*arguments: str | Path) -> subprocess.CompletedProcess[str]:
    command = [_PROGRAM, "--native", _NATIVE, "--imports", _IMPORTS, *map(str, arguments)]
    return subprocess.run(command, capture_output=True, text=True, check=False)


class Validate(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.copy = Path(folder.name, "copy.dylib")

    def test_what_was_built_is_good_and_its_calls_equal_the_native_builds(self) -> None:
        done = _validate(_LIBRARY, "--level", "3", "--seed", "7")
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertIn("to level 3, seed 7\n", done.stdout)
        verdict = re.search(r"^GOOD to level 3: (\d+) checks, (\d+) things .*, (\d+) calls", done.stdout, re.MULTILINE)
        assert verdict is not None
        checks, looked, calls = map(int, verdict.groups())
        self.assertEqual(len(re.findall(r"^  good    ", done.stdout, re.MULTILINE)), checks)
        self.assertGreater(looked, 10000)
        self.assertGreater(calls, 5000)

    def test_a_copy_without_the_names_of_its_functions_is_good(self) -> None:
        subprocess.run(["llvm-strip-14", "-x", str(_LIBRARY), "-o", str(self.copy)], check=True)
        done = _validate(self.copy, "--level", "2")
        self.assertEqual(done.returncode, 0, done.stdout)

    def test_there_are_enough_damages_each_of_its_own_kind(self) -> None:
        copies = set()
        for damage in DAMAGES:
            library = Library(_LIBRARY)
            damage.do(library)
            copies.add(bytes(library.data))
        copies.discard(_LIBRARY.read_bytes())
        self.assertEqual(len(copies), len(DAMAGES))
        self.assertGreaterEqual(len(copies), 20)

    def test_every_damaged_copy_is_found_out_at_its_level(self) -> None:
        for damage in DAMAGES:
            with self.subTest(damage.title):
                library = Library(_LIBRARY)
                damage.do(library)
                self.copy.write_bytes(library.data)
                # Where nothing ends by itself the limit is all that takes time.
                seconds = "1" if damage.says == "processor time" else "5"
                done = _validate(self.copy, "--level", str(damage.level), "--seconds", seconds)
                self.assertEqual(done.returncode, 1, done.stdout)
                self.assertIn(f"NOT GOOD: at level {damage.level}, ", done.stdout)
                self.assertIn(damage.says, done.stdout)

    def test_a_file_that_is_no_library_is_not_good(self) -> None:
        self.copy.write_text("no library", "utf-8")
        done = _validate(self.copy)
        self.assertEqual(done.returncode, 1)
        self.assertIn("is not a Mach-O file", done.stdout)
        self.assertNotIn("  good  ", done.stdout)

    def test_checks_that_cannot_be_made_are_not_taken_for_made(self) -> None:
        command = [_PROGRAM, "--native", str(_LIBRARY.parent / "none"), "--imports", _IMPORTS, str(_LIBRARY)]
        self.assertEqual(subprocess.run(command, capture_output=True, check=False).returncode, 2)
        self.copy.write_bytes(b"\x7fELF" + bytes(60))
        command = [_PROGRAM, "--native", str(self.copy), "--imports", _IMPORTS, str(_LIBRARY), "--level", "2"]
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn("it did not come to its end: the native build: ", done.stdout)

    def test_a_command_line_that_makes_no_sense_is_refused_in_one_line(self) -> None:
        for arguments in (
            ["--levels", "3", _LIBRARY],
            [_LIBRARY, "--level"],
            [_LIBRARY, "--level", "0"],
            [_LIBRARY, "--level", "6"],
            [_LIBRARY, "--seed", "x"],
            [_LIBRARY, _LIBRARY],
            [_LIBRARY.parent / "no such file"],
            [],
        ):
            done = _validate(*arguments)
            self.assertEqual((done.returncode, done.stdout), (2, ""), arguments)
            self.assertEqual(done.stderr.count("\n"), 1)


if __name__ == "__main__":
    unittest.main()
