"""Which sources are compiled for a fault in a header."""

from __future__ import annotations

import tempfile
import unittest
from pathlib import Path

from faults import Fault
from needing import Needing


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
