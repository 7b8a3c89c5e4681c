"""Tests of which sources ./dev lint reads together."""

import contextlib
import io
import json
import os
import tempfile
import unittest
from pathlib import Path
from unittest import mock

from tidy import Tree, tidy

# In the place of clang-tidy: notes what it is given, and finds fault with whatever has the word.
_TIDY = """#!/bin/bash
echo "${@: -1}" >>"$(dirname "$0")/read"
! grep -Hn wrong "${@: -1}"
"""


class MadeUpTree(unittest.TestCase):
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


class Batches(MadeUpTree):
    def test_sources_that_are_compiled_alike_are_read_together(self) -> None:
        one, other = self.add("host/one.cpp"), self.add("plugin/other.cpp")
        optimised = self.add("host/optimised.cpp", options="-O2")
        self.assertCountEqual([[one, other], [optimised]], self.tree().batches([one, other, optimised]))

    def test_no_more_than_fourteen_are_read_together(self) -> None:
        sources = [self.add(f"host/number{i}.cpp") for i in range(30)]
        self.assertEqual([14, 14, 2], [len(batch) for batch in self.tree().batches(sources)])

    def test_what_makes_a_program_of_its_own_is_read_by_itself(self) -> None:
        program = self.add("host/program.cpp", "int main(int argc, char **argv) { return argc; }\n")
        target = self.add("host/target.cpp", 'extern "C" int LLVMFuzzerTestOneInput(const uint8_t *, size_t);\n')
        one, two = self.add("host/one.cpp"), self.add("host/two.cpp", "int domain(int number);\n")
        self.assertCountEqual([[one, two], [program], [target]], self.tree().batches([one, program, target, two]))

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


class Findings(MadeUpTree):
    def setUp(self) -> None:
        super().setUp()
        program = self.root / "clang-tidy-14"
        program.write_text(_TIDY, "utf-8")
        program.chmod(0o755)
        path = f"{self.root}:{os.environ['PATH']}"
        for patch in (mock.patch.dict(os.environ, PATH=path), mock.patch("tidy.built_plugin")):
            patch.start()
            self.addCleanup(patch.stop)

    def examine(self, sources: list[Path]) -> tuple[bool, str, list[str]]:
        """Whether all is clean, what is printed, and the names of what is read."""
        read = self.root / "read"
        read.unlink(missing_ok=True)
        with contextlib.redirect_stdout(io.StringIO()) as printed:
            is_clean = tidy(self.tree(), sources)
        names = [Path(line).name for line in read.read_text("utf-8").splitlines()] if read.exists() else []
        return is_clean, printed.getvalue(), names

    def test_what_is_clean_together_is_not_read_again(self) -> None:
        sources = [self.add("host/one.cpp"), self.add("host/two.cpp")]
        self.assertEqual((True, "", ["together.cpp"]), self.examine(sources))
        self.assertEqual((True, "", []), self.examine(sources))

    def test_where_anything_is_found_together_the_half_that_has_it_is_parted_down_to_the_source(self) -> None:
        sources = [self.add(f"host/{name}.cpp") for name in ("one", "two", "three", "four")]
        sources[2].write_text("int wrong;\n", "utf-8")
        finding = f"{sources[2]}:1:int wrong;\n"
        read = ["together.cpp", "together.cpp", "together.cpp", "three.cpp", "four.cpp"]
        self.assertEqual((False, finding, read), self.examine(sources))
        self.assertEqual((False, finding, ["three.cpp"]), self.examine(sources))
        sources[2].write_text("int right;\n", "utf-8")
        self.assertEqual((True, "", ["three.cpp"]), self.examine(sources))


if __name__ == "__main__":
    unittest.main()
