"""The packages that ./dev asks for."""

from __future__ import annotations

import os
import re
import unittest
from pathlib import Path

_TREE = Path(os.environ["SOURCE_TREE"])


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


if __name__ == "__main__":
    unittest.main()
