"""The same sources give the same bytes, wherever they lie."""

from __future__ import annotations

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

_TREE = Path(os.environ["SOURCE_TREE"])
_PARTS = ("plugin", "host", "convert", "spotlight", "platform", "cmake", "CMakeLists.txt", "CMakePresets.json")


class ReproducibleBuild(unittest.TestCase):
    def test_a_build_from_nothing_in_another_folder_gives_the_same_bytes(self) -> None:
        with tempfile.TemporaryDirectory(prefix="elsewhere ") as folder:
            tree = Path(folder, "a tree with another name")
            tree.mkdir()
            for part in _PARTS:
                if (_TREE / part).is_dir():
                    shutil.copytree(_TREE / part, tree / part)
                else:
                    shutil.copy(_TREE / part, tree)
            subprocess.run(["cmake", "--preset", "macho"], cwd=tree, check=True, capture_output=True)
            built = subprocess.run(["ninja", "-C", "build/macho"], cwd=tree, capture_output=True, text=True)
            self.assertEqual(built.returncode, 0, built.stdout + built.stderr)
            first = Path(os.environ["DYLIB"]).read_bytes()
            second = (tree / "dist" / "Spotlight.dylib").read_bytes()
            self.assertTrue(first == second, "the two libraries differ; cmp shows where")


if __name__ == "__main__":
    unittest.main()
