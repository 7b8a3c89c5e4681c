"""The gate lets a tree through whose commands all do their work, and no other."""

from __future__ import annotations

import contextlib
import io
import os
import shutil
import tempfile
import unittest
from pathlib import Path

import command_table
import gate

_TREE = Path(os.environ["SOURCE_TREE"])

# A tree with three commands; each breaks in its own way when it finds a file that says so.
_DEV = """#!/bin/bash
home=$(cd "$(dirname "$0")" && pwd)
case $1 in
good) [[ ! -f $home/good-is-broken ]] ;;
format) if [[ -f $home/format-is-broken ]]; then echo >>plugin/main.cpp; fi ;;
build) mkdir -p "$home/build" && if [[ -f $home/build-is-broken ]]; then echo >>"$home/dev.commands"; fi ;;
terminal) [[ ! -f $home/terminal-is-broken || ! -t 1 ]] ;;
test)
    failed=0
    [[ ! -f $home/test-is-broken ]] || failed=1
    echo "$((100 - failed * 10))% tests passed, $failed tests failed out of 10"
    exit "$failed"
    ;;
esac
"""
_TABLE = """
[good]
right
[format]
right
[build]
right with {tree} {sdk}
[test]
long
[terminal]
right
"""


class TheGate(unittest.TestCase):
    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.tree = Path(temporary.name).resolve() / "tree"
        for folder in ("platform/include/Carbon", "platform/libc"):
            (self.tree / folder).mkdir(parents=True)
        (self.tree / "dev").write_text(_DEV, "utf-8")
        (self.tree / "dev").chmod(0o755)
        (self.tree / "dev.commands").write_text(_TABLE, "utf-8")

    def _run(self) -> tuple[int, str]:
        said = io.StringIO()
        with contextlib.redirect_stdout(said):
            code = gate.main(self.tree)
        return code, said.getvalue()

    def test_it_opens_for_commands_that_work_and_counts_trials_and_tests(self) -> None:
        code, said = self._run()
        self.assertEqual(code, 0, said)
        # Four commands twice, two of them where there is an apostrophe, the tests once and with their ten, the commits'
        # subjects.
        self.assertEqual(said.splitlines()[-1], "22 passed, 0 failed")

    def test_each_broken_command_shuts_it(self) -> None:
        for command, lines in (("good", 2), ("format", 3), ("build", 3), ("terminal", 1), ("test", 1)):
            with self.subTest(command=command):
                mark = self.tree / f"{command}-is-broken"
                mark.touch()
                code, said = self._run()
                mark.unlink()
                self.assertEqual(code, 1, said)
                failed = [line for line in said.splitlines() if line.startswith("FAILED")]
                self.assertTrue(all(f"./dev {command}" in line for line in failed), said)
                self.assertEqual(len(failed), lines, said)
                self.assertRegex(said.splitlines()[-1], r"\A\d+ passed, [1-9]\d* failed\Z")

    def test_the_next_run_forgets_what_was_mended(self) -> None:
        (self.tree / "good-is-broken").touch()
        self.assertEqual(self._run()[0], 1)
        (self.tree / "good-is-broken").unlink()
        self.assertEqual(self._run()[0], 0)

    def test_each_command_of_this_tree_shuts_it_when_it_fails_and_is_the_one_that_is_named(self) -> None:
        names = [command.name for command in command_table.read(_TREE, self.tree)]
        (self.tree / "dev.commands").write_text("".join(f"[{name}]\nright\n" for name in names), "utf-8")
        (self.tree / "dev").write_text('#!/bin/bash\n[[ ! -f $(dirname "$0")/$1-is-broken ]]\n', "utf-8")
        for name in names:
            with self.subTest(command=name):
                mark = self.tree / f"{name}-is-broken"
                mark.touch()
                code, said = self._run()
                mark.unlink()
                failed = {line.split()[4] for line in said.splitlines() if line.startswith("FAILED")}
                self.assertEqual((code, failed), (1, {name}), said)


if __name__ == "__main__":
    unittest.main()
