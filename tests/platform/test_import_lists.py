"""The import lists are read as they are written, and a list that cannot be read is refused by file and line."""

from __future__ import annotations

import os
import tempfile
import unittest
from pathlib import Path

from imports import Import, ListError, imports_by_name, parse_list, read_lists

_LIST = """\
# What it is.
library /usr/lib/libExample.dylib
current-version 1252
compatibility-version 1

function _called
data     _read   weak since 10.7
"""


class ImportLists(unittest.TestCase):
    def test_a_list_gives_the_library_and_its_symbols(self) -> None:
        library = parse_list(_LIST, "example.txt")
        self.assertEqual(library.install_name, "/usr/lib/libExample.dylib")
        self.assertEqual((library.current_version, library.compatibility_version), ("1252", "1"))
        self.assertEqual(library.imports, (Import("_called", True, False), Import("_read", False, True)))

    def test_an_unknown_line_is_refused_by_file_and_line(self) -> None:
        for line in ("variable _x", "function", "data _x strong", "function _x weak"):
            with self.assertRaisesRegex(ListError, "example.txt:8: "):
                parse_list(f"{_LIST}{line}\n", "example.txt")

    def test_a_list_without_an_install_name_is_refused(self) -> None:
        with self.assertRaisesRegex(ListError, "no line says 'library'"):
            parse_list("current-version 1\ncompatibility-version 1\n", "example.txt")

    def test_a_symbol_on_two_lists_is_refused(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            Path(folder, "a.txt").write_text(_LIST, "utf-8")
            Path(folder, "b.txt").write_text(_LIST.replace("Example", "Other"), "utf-8")
            with self.assertRaisesRegex(ListError, "_called is listed for"):
                read_lists(Path(folder))

    def test_the_lists_of_this_tree_can_be_read(self) -> None:
        imports = imports_by_name(read_lists(Path(os.environ["SOURCE_TREE"], "platform", "imports")))
        self.assertTrue(imports["_CFRelease"].is_function)
        self.assertTrue(imports["_kMDItemGPSDOP"].is_weak)
        self.assertFalse(imports["_kMDItemAuthors"].is_weak)

    def test_functions_that_are_looked_up_by_name_are_on_no_list(self) -> None:
        imports = imports_by_name(read_lists(Path(os.environ["SOURCE_TREE"], "platform", "imports")))
        for name in ("GetSortOptionFlagsForAttribute", "SetSortOptionFlagsForAttribute", "SetSortOrder"):
            self.assertNotIn(f"_MDQuery{name}", imports)


if __name__ == "__main__":
    unittest.main()
