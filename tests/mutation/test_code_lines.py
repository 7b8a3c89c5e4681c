"""What is read out of a table of lines."""

from __future__ import annotations

import unittest
from pathlib import Path

from code_lines import rows_in

_SAID = """\
include_directories[  0] = "/tree/build/asan"
include_directories[  1] = "../.."
include_directories[  2] = "/usr/include"
file_names[  0]:
           name: "/tree/host/a.cpp"
      dir_index: 0
file_names[  1]:
           name: "host/a.h"
      dir_index: 1
file_names[  2]:
           name: "utility"
      dir_index: 2

Address            Line   Column File   ISA Discriminator Flags
------------------ ------ ------ ------ --- ------------- -------------
0x0000000000000000    250      0      0   0             0  is_stmt
0x000000000000001a     12      7      1   0             0  is_stmt prologue_end
0x000000000000001c     14      7      2   0             0
0x000000000000002c      0      7      1   0             0
"""


class CodeLines(unittest.TestCase):
    def test_rows_are_of_the_trees_own_files_and_have_a_line(self) -> None:
        self.assertEqual(
            list(rows_in(_SAID, Path("/tree"))), [(0, "host/a.cpp", 250), (0x1A, "host/a.h", 12)]
        )


if __name__ == "__main__":
    unittest.main()
