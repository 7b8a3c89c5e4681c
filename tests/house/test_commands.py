"""Every command of ./dev answers for itself: what stands in dev.commands is what there is, each says what it takes, and a
wrong call is refused in one line before anything is built.

It is tried in a copy of the tree in which nothing was ever built, at a path with a blank and an apostrophe, from another
folder, in a terminal and without one. That every command does its work is tried by the gate (gate.py), with the trials
of the same table.
"""

from __future__ import annotations

import os
import re
import shutil
import tempfile
import unittest
from pathlib import Path

import command_table
import made_up_sdk
from outside import Ran, run

_TREE = Path(os.environ["SOURCE_TREE"])


class Commands(unittest.TestCase):
    tree: Path
    commands: list[command_table.Command]

    @classmethod
    def setUpClass(cls) -> None:
        temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(temporary.cleanup)
        cls.tree = Path(temporary.name).resolve() / "it's a tree"
        sdk = cls.tree.parent / "an SDK"
        shutil.copytree(_TREE, cls.tree, ignore=shutil.ignore_patterns("build", "dist", ".git", "__pycache__"))
        made_up_sdk.lay_out(cls.tree, sdk)
        cls.commands = command_table.read(cls.tree, sdk)

    def _both_ways(self, *words: str) -> list[tuple[Ran, str]]:
        """Runs ./dev with these words without a terminal and in one; each time with what it said where errors go."""
        ran = [run([str(self.tree / "dev"), *words], in_terminal=in_terminal) for in_terminal in (False, True)]
        for folder in ("build", "dist"):
            self.assertFalse((self.tree / folder).exists(), f"./dev {words} builds something")
        return [(ran[0], ran[0].errors), (ran[1], ran[1].output)]

    def test_the_table_and_the_script_know_the_same_commands(self) -> None:
        functions = re.findall(r"^command_(\w+)\(\)", (self.tree / "dev").read_text("utf-8"), re.MULTILINE)
        names = [command.name for command in self.commands]
        self.assertEqual(sorted(names), sorted(name.replace("_", "-") for name in functions))
        self.assertEqual(len(names), len(set(names)))

    def test_every_command_has_a_description_and_a_trial(self) -> None:
        for command in self.commands:
            with self.subTest(command=command.name):
                self.assertTrue(command.does)
                self.assertTrue(command.right or command.long)

    def test_help_names_every_command(self) -> None:
        for word in ("help", "--help", "-h"):
            for ran, _ in self._both_ways(word):
                with self.subTest(ran=ran):
                    self.assertEqual((ran.code, ran.errors), (0, ""))
                    for command in self.commands:
                        self.assertIn(f"\n  {f'{command.name} {command.takes}'.strip()}", ran.output)
                        self.assertIn(f" {command.does[0]}\n", ran.output)

    def test_each_command_knows_help(self) -> None:
        for command in self.commands:
            for words in ([command.name, "--help"], [command.name, "-h"], ["help", command.name]):
                for ran, _ in self._both_ways(*words):
                    with self.subTest(words=words, ran=ran):
                        self.assertEqual((ran.code, ran.errors), (0, ""))
                        self.assertTrue(ran.output.startswith(f"usage: ./dev {command.name}"))

    def test_each_command_refuses_what_it_does_not_take(self) -> None:
        for command in self.commands:
            for trial in command_table.wrong_trials(command):
                for ran, said in self._both_ways(command.name, *trial):
                    with self.subTest(command=command.name, trial=trial, ran=ran):
                        self.assertEqual(ran.code, 2)
                        self.assertRegex(said, r"\Adev: [^\n]+; \./dev \S+( --help)? (says more|lists them)\n\Z")
                        self.assertEqual(ran.output + ran.errors, said)

    def test_no_command_gets_the_help_and_exit_code_2(self) -> None:
        for ran, said in self._both_ways():
            self.assertEqual(ran.code, 2)
            self.assertTrue(said.startswith("usage: ./dev COMMAND"))

    def test_an_unknown_command_gets_one_line_and_exit_code_2(self) -> None:
        for word in ("tset", "", "run build", "$(true)", "x[0]"):
            for ran, said in self._both_ways(word):
                self.assertEqual((ran.code, said), (2, f"dev: there is no command '{word}'; ./dev help lists them\n"))


if __name__ == "__main__":
    unittest.main()
