"""What a run prints: the events, the table, one file, the schema; the same for a host of any age."""

from __future__ import annotations

import json
import os
import re
import unicodedata
import unittest
import wave
from pathlib import Path

from program import MOMENT, FolderTest, run

_PROGRESS = re.compile(r"^Progress  \d+ results? so far, \d+ files? looked at\n", re.MULTILINE)
_HEADING = "Name\tKind\tSize\tModified (GMT)\tPath\n"
_HOST = "Host      2016.1, records of version 13\n"


def without_progress(said: str) -> str:
    """How many progress events there are is a matter of time."""
    return _PROGRESS.sub("", said)


class Query(FolderTest):
    def test_results_are_on_standard_output_and_everything_else_is_not(self) -> None:
        self.make("b.txt", "hello\n")
        self.make("a10.txt")
        self.make("a9.md", "x" * 1234)
        (self.folder / "inner").mkdir()
        os.utime(self.folder / "inner", (MOMENT, MOMENT))
        ran = run(str(self.folder))
        self.assertEqual(ran.returncode, 0)
        self.assertRegex(ran.stderr, _PROGRESS)
        self.assertEqual(
            without_progress(ran.stderr),
            f'Query     kMDItemFSName == "*"\nFolder    {self.folder}\n{_HOST}Finish    4 results, 4 files looked at\n',
        )
        when = "2009-02-15 12:30:00"
        self.assertEqual(
            ran.stdout,
            f"{_HEADING}"
            f"a9.md\tMarkdown document\t1234\t{when}\t{self.folder}/a9.md\n"
            f"a10.txt\tPlain text document\t0\t{when}\t{self.folder}/a10.txt\n"
            f"b.txt\tPlain text document\t6\t{when}\t{self.folder}/b.txt\n"
            f"inner\tFolder\t\t{when}\t{self.folder}/inner\n",
        )

    def test_what_a_recording_and_a_picture_say_of_themselves_is_shown_and_found(self) -> None:
        with wave.open(str(self.folder / "silence.wav"), "wb") as sound:
            sound.setparams((1, 1, 8000, 12000, "NONE", ""))
            sound.writeframes(b"\x80" * 12000)
        (self.folder / "dot.gif").write_bytes(b"GIF89a\x2c\x01\x05\x00\x00\x00\x00\x2c")
        for name, attribute, kind, value in (
            ("silence.wav", "kMDItemDurationSeconds", "Double", "1.5"),
            ("dot.gif", "kMDItemPixelWidth", "Int64", "300"),
        ):
            with self.subTest(name):
                shown = run("--show", str(self.folder / name)).stdout.splitlines()
                self.assertIn(f"{attribute}\t{kind}\t{value}", shown)
                found = run(str(self.folder), f"{attribute} == {value}").stdout.splitlines()
                self.assertEqual([line.split("\t")[0] for line in found], ["Name", name])

    def test_json_has_numbers_as_numbers_and_what_is_missing_as_null(self) -> None:
        self.make("a.txt", "hello\n")
        (self.folder / "inner").mkdir()
        os.utime(self.folder / "inner", (MOMENT, MOMENT))
        ran = run(str(self.folder), "--format", "json")
        self.assertEqual(ran.returncode, 0)
        when = "2009-02-15T12:30:00Z"
        self.assertEqual(
            json.loads(ran.stdout),
            [
                {
                    "name": "a.txt",
                    "kind": "Plain text document",
                    "size": 6,
                    "modified": when,
                    "path": f"{self.folder}/a.txt",
                },
                {"name": "inner", "kind": "Folder", "size": None, "modified": when, "path": f"{self.folder}/inner"},
            ],
        )
        self.assertEqual(json.loads(run(str(self.folder / "inner"), "--format=json").stdout), [])

    def test_the_heading_says_what_the_host_is_like(self) -> None:
        for version, heading in (
            ("2011.4", "2011.4, records of version 9"),
            ("2013.0", "2013, records of version 11"),
            ("3000", "3000, records of version 13"),
            ("none", "does not tell its version, records of version 9"),
        ):
            with self.subTest(version=version):
                self.assertIn(f"Host      {heading}\n", run(str(self.folder), "--host-version", version).stderr)

    def test_an_attribute_that_does_not_exist_is_pointed_out(self) -> None:
        self.make("a.txt")
        ran = run(str(self.folder), 'kMDItemFSNmae == "*.txt" || kMDItemFSName == "*.txt" || com_example_mine == 1')
        self.assertEqual(ran.returncode, 0)
        self.assertIn("no attribute is called kMDItemFSNmae; did you mean kMDItemFSName?\n", ran.stderr)
        self.assertIn("no attribute is called com_example_mine\n", ran.stderr)
        self.assertIn("a.txt\t", ran.stdout)

    def test_names_that_are_no_utf_8_are_counted_and_left_out(self) -> None:
        self.make("good.txt")
        bad = os.fsencode(self.folder) + b"/f\xff"
        os.mkdir(bad)
        Path(os.fsdecode(bad + b"/inside.txt")).touch()
        Path(os.fsdecode(os.fsencode(self.folder) + b"/g\xfe.txt")).touch()
        ran = run(str(self.folder))
        self.assertEqual(ran.returncode, 0)
        self.assertIn("Note      2 names that are no UTF-8 left out, as no Mac has such\n", ran.stderr)
        self.assertEqual([line.split("\t")[0] for line in ran.stdout.splitlines()], ["Name", "good.txt"])

    def test_folders_that_cannot_be_read_are_counted(self) -> None:
        closed = self.folder / "closed"
        closed.mkdir()
        closed.chmod(0)
        self.addCleanup(closed.chmod, 0o700)
        self.assertIn("Note      1 folder could not be read\n", run(str(self.folder), privileged=False).stderr)

    def test_only_what_the_query_asks_for_is_found(self) -> None:
        self.make("one.txt")
        self.make("two.TXT")
        self.make("three.md")
        ran = run(str(self.folder), 'kMDItemFSName == "*.txt"c')
        self.assertEqual(ran.returncode, 0)
        self.assertIn("Finish    2 results, 3 files looked at\n", ran.stderr)
        self.assertNotIn("three.md", ran.stdout)

    def test_a_query_that_finds_nothing_leaves_the_heading_alone(self) -> None:
        ran = run(str(self.folder))
        self.assertEqual((ran.returncode, ran.stdout), (0, _HEADING))
        self.assertIn("Finish    0 results, 0 files looked at\n", ran.stderr)

    def test_a_single_result_is_not_results(self) -> None:
        self.make("only.txt")
        self.assertIn("Finish    1 result, 1 file looked at\n", run(str(self.folder)).stderr)

    def test_names_of_any_kind_are_printed_on_one_line_each(self) -> None:
        decomposed = unicodedata.normalize("NFD", "décomposé.txt")
        for name in (decomposed, "composé.txt", "日本語.txt", "line\nend.txt", "\x1b[31mred.txt", "tab\there.txt"):
            self.make(name)
        ran = run(str(self.folder))
        self.assertEqual(ran.returncode, 0)
        names = {line.split("\t")[0] for line in ran.stdout.split(_HEADING)[1].splitlines()}
        self.assertEqual(
            names,
            {decomposed, "composé.txt", "日本語.txt", "line\\nend.txt", "\\x1b[31mred.txt", "tab\\there.txt"},
        )

    def test_a_long_table_is_cut_and_says_by_how_much(self) -> None:
        for number in range(60):
            self.make(f"file{number}.txt")
        for arguments, shown in (((), 50), (("--limit", "7"), 7), (("--limit=0",), 60), (("--limit=60",), 60)):
            with self.subTest(arguments=arguments):
                ran = run(str(self.folder), *arguments)
                lines = ran.stdout.split(_HEADING)[1].splitlines()
                rest = "" if shown == 60 else f"… and {60 - shown} more; --limit 0 shows them all\n"
                self.assertEqual(len(lines), shown)
                self.assertEqual(ran.stderr.rpartition(" looked at\n")[2], rest)
                self.assertEqual(
                    [line.split("\t")[0] for line in lines[:shown]], [f"file{number}.txt" for number in range(shown)]
                )

    def test_a_folder_may_be_named_from_where_one_is(self) -> None:
        self.make("here.txt")
        ran = run("folder", cwd=self.folder.parent)
        self.assertEqual(ran.returncode, 0)
        self.assertIn(f"Folder    {self.folder}\n", ran.stderr)
        self.assertIn(f"\t{self.folder}/here.txt\n", ran.stdout)

    def test_without_arguments_something_is_found(self) -> None:
        ran = run()
        self.assertEqual(ran.returncode, 0)
        self.assertIn("Folder    /etc\n", ran.stderr)
        found = re.search(r"^Finish    (\d+) results?, \d+ files looked at$", ran.stderr, re.MULTILINE)
        assert found is not None
        self.assertGreater(int(found[1]), 0)
        self.assertTrue(ran.stdout.startswith(_HEADING))

    def test_hosts_of_every_age_print_the_same(self) -> None:
        self.make("héllo.txt", "hello")
        self.make("日本語.md")
        expected = run(str(self.folder)).stdout
        self.assertIn("héllo.txt\tPlain text document\t5\t", expected)
        for version in ("none", "2011.4", "2012.5", "2013.0", "2013.03", "2013.04", "2016.1", "3000"):
            with self.subTest(version=version):
                ran = run(str(self.folder), "--host-version", version)
                self.assertEqual((ran.returncode, ran.stdout), (0, expected))


class OneFile(FolderTest):
    def _shown(self, path: str, *arguments: str) -> dict[str, tuple[str, str]]:
        ran = run("--show", path, *arguments)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        heading, *rows = [line.split("\t") for line in ran.stdout.splitlines()]
        self.assertEqual(heading, ["Attribute", "Type", "Value"])
        self.assertEqual([row[0] for row in rows], sorted(row[0] for row in rows))
        return {name: (kind, value) for name, kind, value in rows}

    def test_every_attribute_is_shown_with_its_type(self) -> None:
        path = self.make("note.txt", "hello\n")
        shown = self._shown(str(path))
        self.assertEqual(shown["kMDItemFSName"], ("String", "note.txt"))
        self.assertEqual(shown["kMDItemPath"], ("String", str(path)))
        self.assertEqual(shown["kMDItemKind"], ("String", "Plain text document"))
        self.assertEqual(shown["kMDItemFSContentChangeDate"], ("Date", "2009-02-15 12:30:00"))
        self.assertEqual(shown["kMDItemFSInvisible"], ("Boolean", "false"))
        self.assertEqual(shown["kMDItemFSSize"][1], "6")
        self.assertEqual(shown["kMDItemFSOwnerUserID"][1], str(os.getuid()))
        kind, tree = shown["kMDItemContentTypeTree"]
        self.assertEqual(kind, "Array of String")
        self.assertIn("public.plain-text", tree.split(", "))
        self.assertNotIn("kMDItemPixelWidth", shown)

    def test_json_keeps_the_types(self) -> None:
        shown = json.loads(run("--show", str(self.make("note.txt", "hello\n")), "--format", "json").stdout)
        self.assertEqual(shown["kMDItemFSName"], "note.txt")
        self.assertEqual(shown["kMDItemFSSize"], 6)
        self.assertIs(shown["kMDItemFSInvisible"], False)
        self.assertEqual(shown["kMDItemFSContentChangeDate"], "2009-02-15T12:30:00Z")
        self.assertIn("public.plain-text", shown["kMDItemContentTypeTree"])

    def test_hosts_of_every_age_show_the_same(self) -> None:
        path = str(self.make("nöte.txt", "hello\n"))
        expected = self._shown(path)
        for version in ("none", "2011.4", "2012.5", "2013.0", "2013.04", "3000"):
            with self.subTest(version=version):
                self.assertEqual(self._shown(path, "--host-version", version), expected)

    def test_a_folder_has_attributes_too(self) -> None:
        self.assertEqual(self._shown(str(self.folder))["kMDItemKind"], ("String", "Folder"))


class Schema(unittest.TestCase):
    def test_json_has_an_object_for_each_attribute(self) -> None:
        attributes = {row["attribute"]: row for row in json.loads(run("--attributes", "--format=json").stdout)}
        self.assertGreaterEqual(len(attributes), 168)
        self.assertEqual(attributes["kMDItemFSSize"]["type"], "Number")
        self.assertIs(attributes["kMDItemAuthors"]["many"], True)

    def test_every_attribute_has_a_type_and_a_name(self) -> None:
        ran = run("--attributes")
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        heading, *rows = [line.split("\t") for line in ran.stdout.splitlines()]
        self.assertEqual(heading, ["Attribute", "Type", "Values", "Name", "Description"])
        names = [row[0] for row in rows]
        self.assertEqual(names, sorted(names))
        self.assertEqual(len(names), len(set(names)))
        self.assertGreaterEqual(len(names), 168)
        types = {row[0]: row[1:3] for row in rows}
        self.assertEqual(types["kMDItemFSSize"], ["Number", "one"])
        self.assertEqual(types["kMDItemAuthors"], ["Array", "many"])
        self.assertEqual(types["kMDItemFSContentChangeDate"], ["Date", "one"])
        for row in rows:
            with self.subTest(attribute=row[0]):
                self.assertEqual(len(row), 5)
                self.assertIn(row[1], ("Boolean", "Number", "Date", "String", "UUID", "Array", ""))
                self.assertNotEqual(row[3], "")
        # The plugin has no word for the type of data.
        self.assertEqual([row[0] for row in rows if row[1] == ""], ["kMDItemLabelIcon"])


if __name__ == "__main__":
    unittest.main()
