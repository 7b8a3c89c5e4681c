"""A wrong command line gets one sentence and exit code 2; what fails otherwise gets one and exit code 1."""

from __future__ import annotations

import os
import subprocess
import unittest
from pathlib import Path

from program import PLUGIN, PROGRAM, FolderTest, run


def complain(sentence: str) -> str:
    return f"spotlight-run: {sentence}\n"


class WrongUsage(FolderTest):
    def _assert_wrong(self, arguments: tuple[str, ...], sentence: str) -> None:
        with self.subTest(arguments=arguments):
            ran = run(*arguments)
            self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (2, "", complain(sentence)))

    def test_a_wrong_query_is_marked_where_it_stops_being_one(self) -> None:
        name = "the name of an attribute, or ("
        for query, place, expected in (
            ("", 0, name),
            ("name", 4, "a comparison: ==, !=, <, <=, > or >="),
            ('kMDItemFSName = = "*"', 16, "a text in quotes, a number, or a moment such as $time.today(-7)"),
            ('kMDItemFSName == "*', 17, "a quote that ends the text"),
            ('(kMDItemFSName == "*"', 21, "&&, || or )"),
            ('kMDItemFSName == "*" kMDItemFSSize > 1', 21, "&&, || or the end"),
            ('kMDItemFSName == "é日" &&', 25, name),
            ("InRange(kMDItemFSSize, 1)", 24, "a comma"),
            ('kMDItemFSSize > "many"', 16, "a number or a moment, which have an order"),
        ):
            mark = " " * place + "^"
            self._assert_wrong(
                (str(self.folder), query), f"this is no query; at the mark it takes {expected}\n  {query}\n  {mark}"
            )

    def test_wrong_folders(self) -> None:
        path = self.make("file.txt")
        self._assert_wrong(("/no/such/folder",), 'there is nothing at "/no/such/folder"')
        self._assert_wrong((str(path),), f'"{path}" is not a folder')
        self._assert_wrong((f"{path}/inner",), f'there is nothing at "{path}/inner"')
        self._assert_wrong(("",), 'there is nothing at ""')
        bad = os.fsdecode(os.fsencode(self.folder) + b"/f\xff")
        os.mkdir(bad)
        sentence = f'"{self.folder}/f\\xff" is no UTF-8, and no file of a Mac has such a name'
        self._assert_wrong((bad,), sentence)
        self._assert_wrong(("--show", bad), sentence)

    def test_wrong_options(self) -> None:
        self._assert_wrong(("--colour",), "there is no option --colour; --help lists them")
        self._assert_wrong(("-x",), "there is no option -x; --help lists them")
        self._assert_wrong(("--once=yes",), "--once takes nothing")
        self._assert_wrong(("--show",), "--show takes a file, and none is given")
        self._assert_wrong(("--limit", "many"), '--limit takes a number of rows, 0 for all; "many" is none')
        self._assert_wrong(("--limt", "3"), "there is no option --limt; did you mean --limit?")
        self._assert_wrong(("--format", "xml"), '--format takes tsv or json; "xml" is neither')
        for version in ("new", "1", "20134", "1e9"):
            self._assert_wrong(
                ("--host-version", version),
                f'--host-version takes a number from 2005 to 3000, such as 2013.04, or none; "{version}" is neither',
            )
        self._assert_wrong(("--once", "--live"), "--once and --live cannot both be done")
        self._assert_wrong(("--show", "/etc", "--attributes"), "--show and --attributes cannot both be done")
        self._assert_wrong(("--attributes", "/etc"), "a folder or query goes with neither --show nor --attributes")
        self._assert_wrong(("--show", "/nowhere"), 'there is nothing at "/nowhere"')
        self._assert_wrong(
            ("/etc", "a", "query"),
            "a folder and a query are all it takes; a query with blanks must stand in quotes",
        )

    def test_escapes_in_what_was_typed_do_not_reach_the_terminal(self) -> None:
        self._assert_wrong(("/\x1b[31m",), 'there is nothing at "/\\x1b[31m"')

    def test_no_library(self) -> None:
        ran = subprocess.run([PROGRAM], capture_output=True, text=True, check=False)
        self.assertEqual(
            (ran.returncode, ran.stdout, ran.stderr), (2, "", complain("--plugin must say which library to load"))
        )

    def test_help_is_no_mistake_and_needs_no_library(self) -> None:
        for word in ("--help", "-h"):
            ran = subprocess.run([PROGRAM, word], capture_output=True, text=True, check=False)
            self.assertEqual((ran.returncode, ran.stderr), (0, ""))
            self.assertTrue(ran.stdout.startswith("usage: ./dev run [FOLDER] [QUERY] [OPTION...]\n"))
            self.assertLessEqual(max(map(len, ran.stdout.splitlines())), 90)


class Failure(FolderTest):
    def _fails_with(self, library: str) -> str:
        ran = subprocess.run([PROGRAM, "--plugin", library], capture_output=True, text=True, check=False)
        self.assertEqual((ran.returncode, ran.stdout), (1, ""))
        return ran.stderr

    def test_a_library_that_cannot_be_loaded_is_named_with_the_reason(self) -> None:
        self.assertEqual(self._fails_with("/nowhere"), complain("/nowhere: No such file or directory"))
        self.assertEqual(self._fails_with("/etc"), complain("/etc: is not a regular file"))
        text = self.make("file.txt", "not a library")
        self.assertEqual(self._fails_with(str(text)), complain(f"{text}: is not a Mach-O file"))

    def test_a_library_cut_short_is_refused(self) -> None:
        whole = Path(PLUGIN).read_bytes()
        for length in (0, 10, 100, 1000, len(whole) // 2, len(whole) - 1):
            with self.subTest(length=length):
                path = self.folder / "cut"
                path.write_bytes(whole[:length])
                self.assertTrue(self._fails_with(str(path)).startswith(complain(f"{path}: ")[:-1]))

    def test_a_full_disk_is_noticed(self) -> None:
        full = os.open("/dev/full", os.O_WRONLY)
        self.addCleanup(os.close, full)
        ran = run("/etc", "--once", stdout=full)
        self.assertEqual(ran.returncode, 1)
        self.assertEqual(ran.stderr.splitlines()[-1], complain("the output could not be written").strip())


if __name__ == "__main__":
    unittest.main()
