"""On a terminal: columns, colours, no line that is too wide, and a live run that Ctrl-C ends."""

from __future__ import annotations

import re
import unicodedata
import unittest

from program import FolderTest, Running, unstyled


def columns(text: str) -> int:
    """How many columns these tests' characters take on a terminal."""
    width = 0
    for character in text:
        if not unicodedata.combining(character):
            width += 2 if unicodedata.east_asian_width(character) in "WF" else 1
    return width


class Terminal(FolderTest):
    def _table(self, *arguments: str, width: int = 80, environment: dict[str, str] | None = None) -> list[str]:
        with Running(
            str(self.folder), "--once", *arguments, terminal_width=width, environment=environment
        ) as running:
            self.assertEqual(running.end(), 0, running.output)
            return running.output.partition("\n\n")[2].splitlines()

    def test_columns_begin_at_the_same_place_in_every_row(self) -> None:
        for name in ("plain.txt", unicodedata.normalize("NFD", "décomposé.txt"), "日本語.txt"):
            self.make(name, "x" * 1234)
        lines = [unstyled(line) for line in self._table(width=200)]
        places = []
        for line in lines[1:]:
            place = line.index("2009-02-15 12:30:00")
            places.append((columns(line[:place]), columns(line[: line.rindex("  ") + 2])))
        self.assertEqual(len(places), 3)
        self.assertEqual(len(set(places)), 1, lines)
        self.assertEqual(places[0][0], columns(lines[0][: lines[0].index("Modified (GMT)")]))
        for line in lines[1:]:
            self.assertIn("  1.2 KB  ", line)

    def test_no_line_is_wider_than_the_terminal(self) -> None:
        self.make("n" * 100 + ".txt")
        self.make("日" * 60 + ".txt")
        for width in (10, 20, 40, 60, 80, 100, 120):
            with self.subTest(width=width):
                with Running(
                    str(self.folder), 'kMDItemFSName == "*.txt" && kMDItemFSSize >= 0', "--once", terminal_width=width
                ) as running:
                    self.assertEqual(running.end(), 0, running.output)
                lines = unstyled(running.output).splitlines()
                self.assertGreaterEqual(len(lines), 7)
                for line in lines:
                    self.assertLessEqual(columns(line), width, line)

    def test_paths_are_shown_from_the_folder_on(self) -> None:
        inner = self.folder / "inner"
        inner.mkdir()
        (inner / "here.txt").touch()
        lines = [unstyled(line) for line in self._table('kMDItemFSName == "here.txt"')]
        self.assertTrue(lines[1].endswith("  inner/here.txt"), lines)

    def test_a_long_path_keeps_its_end(self) -> None:
        inner = self.folder / ("long" * 20)
        inner.mkdir()
        (inner / "here.txt").touch()
        lines = [unstyled(line) for line in self._table('kMDItemFSName == "here.txt"', width=90)]
        self.assertTrue(lines[1].startswith("here.txt "), lines)
        self.assertTrue(lines[1].endswith("/here.txt"), lines)
        self.assertIn("…", lines[1])

    def test_colours_only_where_they_are_wanted(self) -> None:
        self.make("a.txt")
        self.assertIn("\x1b[", "\n".join(self._table()))
        for environment in ({"NO_COLOR": "1"}, {"TERM": "dumb"}):
            with self.subTest(environment=environment):
                self.assertNotIn("\x1b", "\n".join(self._table(environment=environment)))

    def test_escapes_in_names_do_not_reach_the_terminal(self) -> None:
        self.make("\x1b[2Jcleared.txt")
        self.assertNotIn("\x1b[2J", "\n".join(self._table()))
        self.assertIn("\\x1b[2Jcleared.txt", "\n".join(self._table(width=200)))

    def test_the_time_taken_is_told(self) -> None:
        with Running(str(self.folder), "--once", terminal_width=80) as running:
            self.assertEqual(running.end(), 0, running.output)
            self.assertRegex(unstyled(running.output), r"\nFinish    0 results, 0 files looked at in [0-9.]+ (ms|s)\n")

    def test_the_count_of_a_search_is_written_anew_in_its_place(self) -> None:
        with Running("/", 'kMDItemFSName == "no such name"', terminal_width=80) as running:
            running.wait_for("\r\x1b[K\x1b[2mProgress  \x1b[0m0 results so far, ")
            running.type("\x03")
            self.assertEqual(running.end(), 130, running.output)
        self.assertNotIn("looked at\n", running.output)
        self.assertIn("\r\x1b[KInterrupted: the search is not complete.", running.output)

    def test_a_terminal_that_cannot_do_so_gets_a_line_for_each_count(self) -> None:
        with Running(
            "/", 'kMDItemFSName == "no such name"', terminal_width=80, environment={"TERM": "dumb"}
        ) as running:
            running.wait_for(" looked at\n")
            running.type("\x03")
            self.assertEqual(running.end(), 130, running.output)
        self.assertNotIn("\x1b", running.output)

    def test_the_table_is_as_long_as_the_window_has_room_for(self) -> None:
        for number in range(60):
            self.make(f"{number}.txt")
        with Running(str(self.folder), "--once", terminal_width=80) as running:  # of 40 lines
            self.assertEqual(running.end(), 0, running.output)
        lines = unstyled(running.output).splitlines()
        self.assertEqual(lines[-1], "… and 31 more; --limit 0 shows them all")
        self.assertLess(len(lines), 40)

    def test_names_and_paths_keep_room_in_a_narrow_window(self) -> None:
        inner = self.folder / ("long" * 10)
        inner.mkdir()
        (inner / ("n" * 36 + ".txt")).touch()
        for width, others in ((120, ("Kind", "Size", "Modified (GMT)")), (80, ("Size", "Modified (GMT)")), (60, ("Size",))):
            with self.subTest(width=width):
                heading, line = (unstyled(line) for line in self._table('kMDItemFSName == "*.txt"', width=width))
                self.assertEqual(re.split(" {2,}", heading), ["Name", *others, "Path"])
                self.assertGreaterEqual(len(line.split("  ")[0]), 20)
                self.assertGreaterEqual(len(line) - heading.index("Path"), 20)

    def test_a_run_stays_live_until_control_c_is_typed(self) -> None:
        with Running(str(self.folder), terminal_width=80) as running:
            running.wait_for("Ctrl-C ends.")
            self.make("new.txt")
            running.wait_for("+ new.txt")
            running.type("\x03")
            self.assertEqual(running.end(), 0, running.output)
            self.assertRegex(running.output, r"\r\x1b\[KStopped after \d+ updates?\.\n$")

    def test_programs_get_the_same_in_a_terminal(self) -> None:
        self.make("a.txt")
        with Running(str(self.folder), "--once", "--format=tsv", terminal_width=20) as running:
            self.assertEqual(running.end(), 0, running.output)
            self.assertIn(f"\t{self.folder}/a.txt\n", running.output)

    def test_an_interrupt_while_gathering_is_told(self) -> None:
        with Running("/", 'kMDItemFSName == "no such name"', terminal_width=80) as running:
            running.wait_for("Host ")
            running.type("\x03")
            self.assertEqual(running.end(), 130, running.output)
            self.assertIn("Interrupted: the search is not complete.", running.output)

    def test_a_search_that_finds_nothing_says_how_far_it_is(self) -> None:
        with Running("/", 'kMDItemFSName == "no such name"', terminal_width=80) as running:
            running.wait_for(" looked at")
            self.assertRegex(unstyled(running.output), r"Progress  0 results so far, [1-9]\d* files? looked at")
            running.type("\x03")
            self.assertEqual(running.end(), 130, running.output)

    def test_other_tables_fit_too(self) -> None:
        path = self.make("file.txt", "hello")
        for arguments in (("--show", str(path)), ("--attributes",)):
            for width in (30, 80):
                with self.subTest(arguments=arguments), Running(*arguments, terminal_width=width) as running:
                    self.assertEqual(running.end(), 0, running.output)
                    for line in unstyled(running.output).splitlines():
                        self.assertLessEqual(columns(line), width, line)


if __name__ == "__main__":
    unittest.main()
