"""Tests of which sources ./dev lint reads together."""

import json
import tempfile
import unittest
from pathlib import Path

from tidy import Tree


class Batches(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name).resolve()
        (self.root / "build" / "lint").mkdir(parents=True)
        (self.root / ".clang-tidy").touch()
        self.entries: list[dict[str, str]] = []

    def add(self, name: str, text: str = "int number;\n", options: str = "") -> Path:
        source = self.root / name
        source.parent.mkdir(exist_ok=True)
        source.write_text(text, "utf-8")
        command = f"clang++ {options} -o {name}.o -c {source}"
        self.entries.append({"file": str(source), "directory": str(self.root), "command": command})
        return source

    def tree(self) -> Tree:
        (self.root / "build" / "lint" / "compile_commands.json").write_text(json.dumps(self.entries), "utf-8")
        return Tree(self.root)

    def test_sources_of_a_folder_that_are_compiled_alike_are_read_together(self) -> None:
        one, two = self.add("host/one.cpp"), self.add("host/two.cpp")
        other = self.add("plugin/other.cpp")
        optimised = self.add("host/optimised.cpp", options="-O2")
        batches = self.tree().batches([one, two, other, optimised])
        self.assertCountEqual([[one, two], [other], [optimised]], batches)

    def test_no_more_than_eight_are_read_together(self) -> None:
        sources = [self.add(f"host/number{i}.cpp") for i in range(17)]
        self.assertEqual([8, 8, 1], [len(batch) for batch in self.tree().batches(sources)])

    def test_one_that_may_declare_to_use_what_only_others_use_is_read_by_itself(self) -> None:
        idle = self.add("host/idle.cpp", "using std::string;\n")
        renaming = self.add("host/renaming.cpp", "namespace files = std::filesystem;\n")
        busy = self.add("host/busy.cpp", "using std::string;\nstring text;\n")
        plain = self.add("host/plain.cpp")
        self.assertCountEqual([[busy, plain], [idle], [renaming]], self.tree().batches([busy, idle, plain, renaming]))

    def test_they_stand_one_behind_the_other_and_are_compiled_as_each_is(self) -> None:
        one, two = self.add("host/one.cpp", "int one;\n", "-O1"), self.add("host/two.cpp", "int two;\n", "-O1")
        together = self.tree().write_batch([one, two], "name")
        text = together.read_text("utf-8")
        self.assertLess(text.index("int one;"), text.index("int two;"))
        entry = json.loads((together.parent / "compile_commands.json").read_text("utf-8"))[0]
        self.assertEqual(["clang++", "-O1", "-c", str(together)], entry["arguments"])


if __name__ == "__main__":
    unittest.main()
