"""The list of unnoticeable faults: how it is read, and what is refused."""

from __future__ import annotations

import tempfile
import unittest
from pathlib import Path

from faults import ChangedLines, Fault
from unnoticeable import Listed, read_list

_ENTRY = """\
# What a reader should know first.

host/a.cpp
- first();
+ second();
  Both do
  the same.
"""


_ONCE = """\
host/a.cpp
once Start
once StartMore
  It is called at the start.
"""


class Unnoticeable(unittest.TestCase):
    def _read(self, text: str) -> Listed:
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "list.txt"
            path.write_text(text, "utf-8")
            return read_list(path)

    def test_an_entry_has_a_file_a_change_and_a_reason(self) -> None:
        self.assertEqual(
            self._read(_ENTRY).faults, {ChangedLines("host/a.cpp", ("first();",), ("second();",)): "Both do the same."}
        )

    def test_what_is_remembered_in_a_function_that_runs_once_is_named_by_the_function(self) -> None:
        listed = self._read(_ENTRY + "\n" + _ONCE)
        self.assertEqual(set(listed.once), {("host/a.cpp", "Start"), ("host/a.cpp", "StartMore")})
        for kind, name, is_named in (
            ("result remembered", "Start", True),
            ("value remembered", "StartMore", True),
            ("statement left out", "Start", False),
            ("result remembered", "Other", False),
        ):
            with self.subTest(kind=kind, name=name):
                fault = Fault("host/a.cpp", 0, 1, "", kind, 12, (10, 20), function_name=name)
                self.assertEqual(listed.remembers_once(fault), is_named)

    def test_an_entry_without_a_reason_or_change_and_one_that_stands_twice_are_refused(self) -> None:
        for text in (
            "host/a.cpp\n- first();\n+ second();\n",
            "host/a.cpp\n  No change.\n",
            _ENTRY + "\n" + _ENTRY,
            "host/a.cpp\nonce Start\n",
            _ONCE + "\n" + _ONCE,
            "host/a.cpp\n- first();\nonce Start\n  One or the other.\n",
        ):
            with self.subTest(text=text), self.assertRaises(SystemExit):
                self._read(text)

    def test_the_list_itself_can_be_read(self) -> None:
        listed = read_list(Path(__file__).resolve().parent / "unnoticeable.txt")
        for entry, reason in [*listed.faults.items(), *listed.once.items()]:
            with self.subTest(entry=entry):
                self.assertTrue(reason.endswith("."))


if __name__ == "__main__":
    unittest.main()
