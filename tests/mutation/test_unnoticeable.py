"""The list of unnoticeable faults: how it is read, and what is refused."""

from __future__ import annotations

import tempfile
import unittest
from pathlib import Path

from faults import ChangedLines
from unnoticeable import read_list

_ENTRY = """\
# What a reader should know first.

host/a.cpp
- first();
+ second();
  Both do
  the same.
"""


class Unnoticeable(unittest.TestCase):
    def _read(self, text: str) -> dict[ChangedLines, str]:
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "list.txt"
            path.write_text(text, "utf-8")
            return read_list(path)

    def test_an_entry_has_a_file_a_change_and_a_reason(self) -> None:
        self.assertEqual(
            self._read(_ENTRY), {ChangedLines("host/a.cpp", ("first();",), ("second();",)): "Both do the same."}
        )

    def test_an_entry_without_a_reason_or_change_and_one_that_stands_twice_are_refused(self) -> None:
        for text in (
            "host/a.cpp\n- first();\n+ second();\n",
            "host/a.cpp\n  No change.\n",
            _ENTRY + "\n" + _ENTRY,
        ):
            with self.subTest(text=text), self.assertRaises(SystemExit):
                self._read(text)

    def test_the_list_itself_can_be_read(self) -> None:
        for entry, reason in read_list(Path(__file__).resolve().parent / "unnoticeable.txt").items():
            with self.subTest(entry=entry):
                self.assertTrue(reason.endswith("."))


if __name__ == "__main__":
    unittest.main()
