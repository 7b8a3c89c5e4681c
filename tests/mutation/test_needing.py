"""Which sources are compiled for a fault in a header."""

from __future__ import annotations

import tempfile
import unittest
from pathlib import Path

from faults import Fault
from needing import Needing, lines_in

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
"""


class KnownLines(Needing):
    """Objects whose lines are given, and hold nothing but the name of a variable."""

    def __init__(self, folder: Path) -> None:
        objects = {"host/a.cpp": folder / "a.o", "host/b.cpp": folder / "b.o"}
        for path in objects.values():
            path.write_bytes(b"theService" if path.name == "a.o" else b"")
        super().__init__(folder, objects)
        self._lines = {"host/a.cpp": {"host/a.h": {12, 30}}, "host/b.cpp": {"host/a.h": {30}}}


class NeedingTest(unittest.TestCase):
    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self._needing = KnownLines(Path(temporary.name))

    def _needed(self, fault: Fault) -> list[str]:
        return [source for source in ("host/a.cpp", "host/b.cpp") if self._needing.needs(source, fault)]

    def test_the_lines_of_an_object_are_those_of_the_trees_own_files(self) -> None:
        self.assertEqual(lines_in(_SAID, Path("/tree")), {"host/a.cpp": {250}, "host/a.h": {12}})

    def test_a_function_is_compiled_where_it_has_code(self) -> None:
        self.assertEqual(self._needed(Fault("host/a.h", 0, 1, "", "a kind", 12, (10, 20))), ["host/a.cpp"])

    def test_a_variable_is_compiled_where_it_is_named(self) -> None:
        self.assertEqual(
            self._needed(Fault("host/a.h", 0, 1, "", "a kind", 2, variable="theService")), ["host/a.cpp"]
        )

    def test_what_the_compiler_reckons_with_is_compiled_everywhere(self) -> None:
        for fault in (
            Fault("host/a.h", 0, 1, "", "a kind", 2),
            Fault("host/a.h", 0, 1, "", "a kind", 12, (10, 20), at_compile_time=True),
        ):
            self.assertEqual(self._needed(fault), ["host/a.cpp", "host/b.cpp"])


if __name__ == "__main__":
    unittest.main()
