"""The program runner as people start it: exit codes, what goes where, and how it is stopped."""

from __future__ import annotations

import os
import re
import signal
import subprocess
import tempfile
import unittest
from pathlib import Path

PROGRAM = os.environ["PROGRAM"]
PLUGIN = os.environ["PLUGIN"]
_PATIENCE = 60


class Runner(unittest.TestCase):
    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name)

    def write(self, text: str, name: str = "program.bas") -> Path:
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text, "utf-8")
        return path

    def run_program(self, text: str, *words: str, options: tuple[str, ...] = ()) -> subprocess.CompletedProcess[str]:
        program = self.write(text)
        return subprocess.run(
            [PROGRAM, "--plugin", PLUGIN, *options, program.name, *words],
            cwd=self.folder,
            capture_output=True,
            text=True,
            check=False,
            timeout=_PATIENCE,
        )

    def test_a_program_that_ends_well_exits_with_0_and_printed_to_stdout(self) -> None:
        ended = self.run_program('Sub Main(args() As String)\nPrint Join(args, "|")\nEnd Sub\n', "a", "--b c")
        self.assertEqual((ended.returncode, ended.stdout, ended.stderr), (0, "a|--b c\n", ""))

    def test_an_exception_that_nobody_catches_exits_with_1_and_names_class_message_and_place(self) -> None:
        ended = self.run_program('Print "first"\nRaise New RuntimeException("bad luck")\n')
        self.assertEqual(
            (ended.returncode, ended.stdout, ended.stderr),
            (1, "first\n", "program.bas:2:1: RuntimeException: bad luck\n"),
        )

    def test_a_wrong_program_exits_with_2_and_has_done_nothing(self) -> None:
        ended = self.run_program('Print "first"\nPrint Unknown\n')
        self.assertEqual((ended.returncode, ended.stdout), (2, ""))
        self.assertEqual(
            ended.stderr, "program.bas:2:7: there is nothing named Unknown\n  Print Unknown\n        ^~~~~~~\n"
        )

    def test_the_calls_between_plugin_host_and_system_can_be_traced(self) -> None:
        text = 'Dim query As New MDQueryQTX("kMDItemFSName == 1", Array("a"), Array("b"))\nPrint Str(query.ResultCount)\n'
        ended = self.run_program(text, options=("--trace", "--host-version=2013.04"))
        self.assertEqual((ended.returncode, ended.stdout), (0, "0\n"))
        lines = ended.stderr.splitlines()
        self.assertEqual(lines[0], "Host      2013.04")
        self.assertIn('system      MDQueryCreate("kMDItemFSName == 1", ["a"], ["b"])', lines)
        counted = next(i for i, line in enumerate(lines) if re.fullmatch(r"plugin    MDQueryQTX #\d+\.ResultCount\(\)", line))
        self.assertEqual(
            lines[counted + 1 : counted + 3],
            ['system      MDQueryGetResultCount(MDQuery "kMDItemFSName == 1")', "plugin    → 0"],
        )

    def test_the_host_s_age_can_be_chosen(self) -> None:
        for version in ("none", "2011.4", "3000"):
            ended = self.run_program(
                'Dim q As New MDQueryQTX("a == 1")\nPrint q.QueryString\n', options=("--host-version", version)
            )
            self.assertEqual((ended.returncode, ended.stdout), (0, "a == 1\n"), version)

    def test_a_wrong_command_line_exits_with_2(self) -> None:
        for words in ([], ["--host-version", "old", "x.bas"], ["--colour", "x", "x.bas"], ["--steps"]):
            ended = subprocess.run([PROGRAM, *words], capture_output=True, text=True, check=False, timeout=_PATIENCE)
            self.assertEqual((ended.returncode, ended.stdout), (2, ""), words)
            self.assertIn("usage:", ended.stderr)

    def test_a_program_that_cannot_be_read_exits_with_1(self) -> None:
        ended = subprocess.run(
            [PROGRAM, "--plugin", PLUGIN, "nowhere.bas"], capture_output=True, text=True, check=False, timeout=_PATIENCE
        )
        self.assertEqual((ended.returncode, ended.stderr), (1, "nowhere.bas cannot be read\n"))

    def test_a_module_of_the_toolkit_is_found_by_its_name_and_its_mistakes_in_its_file(self) -> None:
        self.write('Module Greeting\nFunction Text() As String\nReturn "hello"\nEnd Function\nEnd Module\n',
                   "toolkit/Greeting.bas")
        self.assertEqual(self.run_program("Print greeting.Text\n").stdout, "hello\n")
        self.write("Module Greeting\nDim a As Strnig\nEnd Module\n", "toolkit/Greeting.bas")
        self.assertIn("toolkit/Greeting.bas:2:10: there is no type Strnig", self.run_program("greeting.a = 1\n").stderr)

    def test_a_program_that_never_ends_is_stopped_by_its_step_limit_or_by_an_interrupt(self) -> None:
        endless = 'Print "begun"\nDo\nLoop\n'
        ended = self.run_program(endless, options=("--steps", "5000"))
        self.assertEqual((ended.returncode, ended.stderr), (1, "stopped after 5000 steps\n"))
        self.interrupt(endless)

    def test_an_interrupt_ends_a_live_query(self) -> None:
        self.interrupt(
            'Dim q As New MDQueryQTX("kMDItemFSName == \'*\'")\n'
            "Dim folders() As FolderItem = Array(New FolderItem(\".\"))\nDim none() As String\n"
            "q.SetSearchScope(folders, none)\n"
            'If q.Execute(MDQueryQTX.kMDQueryWantsUpdates) Then Print "begun"\n'
        )

    def interrupt(self, text: str) -> None:
        program = self.write(text)
        with subprocess.Popen(
            [PROGRAM, "--plugin", PLUGIN, program.name], cwd=self.folder, stdout=subprocess.PIPE, text=True
        ) as process:
            assert process.stdout
            self.assertEqual(process.stdout.readline(), "begun\n")
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.wait(_PATIENCE), 0)


if __name__ == "__main__":
    unittest.main()
