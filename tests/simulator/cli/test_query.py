"""What a run prints: the events, the table, one file, the schema; the same for a host of any age."""

from __future__ import annotations

import os
import re
import unicodedata
import unittest

from program import MOMENT, FolderTest, run

_PROGRESS = re.compile(r"^Progress  0 added, 0 changed, 0 removed; \d+ results? so far\n", re.MULTILINE)
_HEADING = "\nName\tKind\tSize\tModified (GMT)\tPath\n"


def without_progress(output: str) -> str:
    """How many progress events there are is a matter of time."""
    return _PROGRESS.sub("", output)


class Query(FolderTest):
    def test_a_run_prints_the_query_its_end_and_what_was_found(self) -> None:
        self.make("b.txt", "hello\n")
        self.make("a10.txt")
        self.make("a9.md", "x" * 1234)
        (self.folder / "inner").mkdir()
        os.utime(self.folder / "inner", (MOMENT, MOMENT))
        ran = run(str(self.folder))
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        self.assertRegex(ran.stdout, _PROGRESS)
        when = "2009-02-15 12:30:00"
        self.assertEqual(
            without_progress(ran.stdout),
            f'Query     kMDItemFSName == "*"\nFolder    {self.folder}\nFinish    4 results\n{_HEADING}'
            f"a9.md\tMarkdown document\t1234\t{when}\t{self.folder}/a9.md\n"
            f"a10.txt\tPlain text document\t0\t{when}\t{self.folder}/a10.txt\n"
            f"b.txt\tPlain text document\t6\t{when}\t{self.folder}/b.txt\n"
            f"inner\tFolder\t\t{when}\t{self.folder}/inner\n",
        )

    def test_only_what_the_query_asks_for_is_found(self) -> None:
        self.make("one.txt")
        self.make("two.TXT")
        self.make("three.md")
        ran = run(str(self.folder), 'kMDItemFSName == "*.txt"c')
        self.assertEqual(ran.returncode, 0)
        self.assertIn("Finish    2 results\n", ran.stdout)
        self.assertNotIn("three.md", ran.stdout)

    def test_a_query_that_finds_nothing_has_no_table(self) -> None:
        ran = run(str(self.folder))
        self.assertEqual(ran.returncode, 0)
        self.assertEqual(
            without_progress(ran.stdout),
            f'Query     kMDItemFSName == "*"\nFolder    {self.folder}\nFinish    0 results\n',
        )

    def test_a_single_result_is_not_results(self) -> None:
        self.make("only.txt")
        self.assertIn("Finish    1 result\n", run(str(self.folder)).stdout)

    def test_names_of_any_kind_are_printed_on_one_line_each(self) -> None:
        decomposed = unicodedata.normalize("NFD", "décomposé.txt")
        for name in (decomposed, "composé.txt", "日本語.txt", "line\nend.txt", "\x1b[31mred.txt", "tab\there.txt"):
            self.make(name)
        ran = run(str(self.folder))
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
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
                lines = run(str(self.folder), *arguments).stdout.split(_HEADING)[1].splitlines()
                rest = [] if shown == 60 else [f"… and {60 - shown} more; --limit 0 shows them all"]
                self.assertEqual(len(lines), shown + len(rest))
                self.assertEqual(lines[shown:], rest)
                self.assertEqual(
                    [line.split("\t")[0] for line in lines[:shown]], [f"file{number}.txt" for number in range(shown)]
                )

    def test_a_folder_may_be_named_from_where_one_is(self) -> None:
        self.make("here.txt")
        ran = run("folder", cwd=self.folder.parent)
        self.assertEqual(ran.returncode, 0)
        self.assertIn(f"Folder    {self.folder}\n", ran.stdout)
        self.assertIn(f"\t{self.folder}/here.txt\n", ran.stdout)

    def test_without_arguments_something_is_found(self) -> None:
        ran = run()
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        self.assertIn("Folder    /etc\n", ran.stdout)
        found = re.search(r"^Finish    (\d+) results?$", ran.stdout, re.MULTILINE)
        assert found is not None
        self.assertGreater(int(found[1]), 0)
        self.assertIn(_HEADING, ran.stdout)

    def test_hosts_of_every_age_print_the_same(self) -> None:
        self.make("héllo.txt", "hello")
        self.make("日本語.md")
        expected = without_progress(run(str(self.folder)).stdout)
        self.assertIn("héllo.txt\tPlain text document\t5\t", expected)
        for version in ("none", "2011.4", "2012.5", "2013.0", "2013.03", "2013.04", "2016.1", "3000"):
            with self.subTest(version=version):
                ran = run(str(self.folder), "--host-version", version)
                self.assertEqual((ran.returncode, ran.stderr), (0, ""))
                self.assertEqual(without_progress(ran.stdout), expected)


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

    def test_hosts_of_every_age_show_the_same(self) -> None:
        path = str(self.make("nöte.txt", "hello\n"))
        expected = self._shown(path)
        for version in ("none", "2011.4", "2012.5", "2013.0", "2013.04", "3000"):
            with self.subTest(version=version):
                self.assertEqual(self._shown(path, "--host-version", version), expected)

    def test_a_folder_has_attributes_too(self) -> None:
        self.assertEqual(self._shown(str(self.folder))["kMDItemKind"], ("String", "Folder"))


class Schema(unittest.TestCase):
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
