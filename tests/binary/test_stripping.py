"""A person may take the names of the functions inside out of the finished library, as `strip -x` does."""

from __future__ import annotations

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

import dump

_LIBRARY = Path(os.environ["DYLIB"])
_PLUGIN_TESTS = os.environ["PLUGIN_TESTS"]


def _defined(library: Path) -> list[str]:
    command = ["llvm-nm-14", "--defined-only", "--format=just-symbols", str(library)]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.split()


class Stripping(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.copy = Path(folder.name, _LIBRARY.name)
        subprocess.run(["llvm-strip-14", "-x", str(_LIBRARY), "-o", str(self.copy)], check=True)

    def test_only_names_are_gone(self) -> None:
        self.assertGreater(len(_defined(_LIBRARY)), 500)
        self.assertLess(len(_defined(self.copy)), 5)
        self.assertEqual(dump.dump(self.copy), dump.dump(_LIBRARY))

    def test_crash_reports_call_it_by_the_same_uuid(self) -> None:
        self.assertEqual(dump.uuid(self.copy), dump.uuid(_LIBRARY))

    def test_it_loads_and_registers_everything_with_hosts_of_every_age(self) -> None:
        command = [_PLUGIN_TESTS, "--plugin", str(self.copy)]
        tested = subprocess.run(command, cwd=self.copy.parent, capture_output=True, text=True)
        self.assertEqual(tested.returncode, 0, tested.stdout + tested.stderr)


if __name__ == "__main__":
    unittest.main()
