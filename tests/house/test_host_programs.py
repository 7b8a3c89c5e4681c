"""The examples, and the pieces of code in the reference, use the plugin's classes as they are declared; and the checker
finds what it is there to find."""

from __future__ import annotations

import os
import unittest
from pathlib import Path

from host_program import Program
from host_types import Classes, Type
from snippets import snippets

TREE = Path(os.environ["SOURCE_TREE"])

# What the lines of the tests below take for granted.
KNOWN = {
    "query": Type("mdqueryqtx"),
    "self": Type("mdqueryqtx"),
    "item": Type("mditemqtx"),
}


class HostPrograms(unittest.TestCase):
    def problems(self, *lines: str) -> list[str]:
        return Program(Classes(TREE), KNOWN).problems(lines)

    def test_every_example_uses_what_is_declared_as_it_is_declared(self) -> None:
        examples = sorted((TREE / "examples").glob("*.bas"))
        self.assertGreaterEqual(len(examples), 3)
        for path in examples:
            with self.subTest(path.name):
                self.assertEqual(Program(Classes(TREE), {}).problems(path.read_text("utf-8").splitlines()), [])

    def test_every_piece_of_code_on_the_pages_does_so_too(self) -> None:
        for path in sorted([TREE / "README.md", *(TREE / "docs/reference").glob("*.md")]):
            for snippet in snippets(path.read_text("utf-8")):
                with self.subTest(path.name, line=snippet.block.first_line):
                    first_line = snippet.block.first_line - len(snippet.prepared)
                    self.assertEqual(Program(Classes(TREE), {}).problems(snippet.lines(), first_line), [])

    def test_every_example_is_listed_beside_the_examples(self) -> None:
        listed = (TREE / "examples/README.md").read_text("utf-8")
        for path in (TREE / "examples").glob("*.bas"):
            self.assertIn(f"({path.name})", listed)

    def test_a_method_that_is_not_declared_is_found(self) -> None:
        self.assertEqual(self.problems("query.Start"), ["1: mdqueryqtx.Start is not declared"])

    def test_an_argument_of_another_type_is_found(self) -> None:
        self.assertEqual(self.problems('query.SetMaxCount("5")'), ["1: mdqueryqtx.SetMaxCount does not take (string)"])

    def test_one_value_where_an_array_is_wanted_is_found(self) -> None:
        self.assertEqual(len(self.problems('query.SetSortOrder("kMDItemFSName")')), 1)

    def test_a_missing_argument_is_found(self) -> None:
        self.assertEqual(len(self.problems("Dim a As MDItemQTX = query.ResultAtIndex")), 1)

    def test_an_argument_too_many_is_found(self) -> None:
        self.assertEqual(len(self.problems("query.Stop(1)")), 1)

    def test_a_default_may_be_left_out(self) -> None:
        self.assertEqual(self.problems("Dim all() As MDItemQTX = query.Results"), [])

    def test_a_result_of_another_type_is_found(self) -> None:
        self.assertEqual(self.problems("Dim name As String = query.ResultCount"), ["1: string cannot hold integer"])

    def test_an_array_in_place_of_one_value_is_found(self) -> None:
        self.assertEqual(len(self.problems("Dim one As MDItemQTX = query.Results")), 1)

    def test_a_shared_method_on_an_object_is_found(self) -> None:
        self.assertEqual(len(self.problems("Print item.kMDItemFSSize")), 1)

    def test_an_instance_method_on_a_class_is_found(self) -> None:
        self.assertEqual(len(self.problems("Print MDItemQTX.Path")), 1)

    def test_a_misspelt_key_is_found(self) -> None:
        self.assertEqual(len(self.problems("Print MDItemQTX.kMDItemFilesize")), 1)

    def test_writing_a_read_only_property_is_found(self) -> None:
        self.assertEqual(self.problems('item.Path = "/tmp"'), ["1: item.Path cannot be set"])

    def test_an_event_with_other_parameters_is_found(self) -> None:
        self.assertEqual(len(self.problems("Event Finish(Items() As MDItemQTX)")), 1)

    def test_what_the_checker_does_not_know_is_found(self) -> None:
        self.assertEqual(len(self.problems("Goto 10")), 1)
        self.assertEqual(self.problems("Dim x As Strnig"), ["1: there is no type Strnig"])
        self.assertEqual(len(self.problems("Dim x As Integer = Unknown(1)")), 1)


if __name__ == "__main__":
    unittest.main()
