"""A live run: what happens in the folder shows as it happens, and an interrupt ends it in order."""

from __future__ import annotations

import os
import shutil
import signal
import unittest

from program import FolderTest, Running

_LIVE = "Live. Every change in the folder shows here, at its time (GMT); Ctrl-C ends.\n"


class Live(FolderTest):
    def _assert_ends_well(self, running: Running, by: int = signal.SIGINT) -> None:
        running.signal(by)
        self.assertEqual(running.end(), 0, running.output)
        self.assertRegex(running.output, r"\nStopped after \d+ updates?\.\n$")

    def test_files_made_changed_renamed_and_deleted_show(self) -> None:
        path = self.folder / "new.txt"
        renamed = self.folder / "newer.txt"
        with Running(str(self.folder), "--live") as running:
            running.wait_for(_LIVE)
            path.write_text("one")
            running.wait_for("          + new.txt\n")
            self.assertRegex(running.output, r"Update    \d\d:\d\d:\d\d  1 added, \d changed, 0 removed; 1 result\n")
            with path.open("a") as file:
                file.write("and more")
            running.wait_for("          ~ new.txt; size 3 bytes → 11 bytes")
            path.rename(renamed)
            running.wait_for("          ~ new.txt → newer.txt")
            renamed.unlink()
            running.wait_for("          - newer.txt\n")
            running.wait_for("0 added, 0 changed, 1 removed; 0 results\n")
            self._assert_ends_well(running)

    def test_a_result_that_was_there_from_the_start_is_named_when_it_goes(self) -> None:
        path = self.make("old.txt")
        with Running(str(self.folder), "--live") as running:
            running.wait_for(_LIVE)
            path.unlink()
            running.wait_for("          - old.txt\n")
            self._assert_ends_well(running)

    def test_files_moved_out_and_in_show(self) -> None:
        path = self.make("traveller.txt")
        elsewhere = self.folder.parent / "traveller.txt"
        with Running(str(self.folder), "--live") as running:
            running.wait_for(_LIVE)
            path.rename(elsewhere)
            running.wait_for("          - traveller.txt\n")
            elsewhere.rename(path)
            running.wait_for("          + traveller.txt\n")
            self._assert_ends_well(running)

    def test_what_the_query_does_not_ask_for_does_not_show(self) -> None:
        with Running(str(self.folder), 'kMDItemFSName == "*.txt"', "--live") as running:
            running.wait_for(_LIVE)
            self.make("other.md")
            self.make("wanted.txt")
            running.wait_for("          + wanted.txt\n")
            self.assertNotIn("other.md", running.output)
            self._assert_ends_well(running)

    def test_a_burst_adds_up_and_only_the_first_names_are_printed(self) -> None:
        inner = self.folder / "inner"
        with Running(str(self.folder), 'kMDItemFSName == "*.txt"', "--live") as running:
            running.wait_for(_LIVE)
            inner.mkdir()
            for number in range(500):
                (inner / f"{number}.txt").touch()
            running.wait_for("; 500 results\n")
            shutil.rmtree(inner)
            running.wait_for("; 0 results\n")
            self._assert_ends_well(running)
            updates = [line.split() for line in running.output.splitlines() if line.startswith("Update")]
            self.assertEqual(sum(int(words[2]) for words in updates), 500)
            self.assertEqual(sum(int(words[6]) for words in updates), 500)
            named = sum(line.startswith("          + ") for line in running.output.splitlines())
            self.assertLessEqual(named, 21 * len(updates))

    def test_termination_and_hanging_up_end_in_order_too(self) -> None:
        for number in (signal.SIGTERM, signal.SIGHUP):
            with self.subTest(signal=number), Running(str(self.folder), "--live") as running:
                running.wait_for(_LIVE)
                self._assert_ends_well(running, number)

    def test_an_interrupt_while_gathering_shows_what_was_found_and_ends_with_130(self) -> None:
        for folder in range(20):
            inner = self.folder / str(folder)
            inner.mkdir()
            for number in range(100):
                (inner / f"{number}.txt").touch()
        for number, code in ((signal.SIGINT, 130), (signal.SIGTERM, 143)):
            with self.subTest(signal=number), Running(str(self.folder), "--live", "--limit=1") as running:
                running.wait_for("Host ")
                running.signal(number)
                self.assertEqual(running.end(), code, running.output)
                self.assertIn("Interrupted: the search is not complete. Found until then:\n", running.output)
                self.assertIn("Name\tKind\t", running.output)
                self.assertNotIn("Finish", running.output)

    def test_a_change_in_an_inner_folder_shows_the_path_from_the_folder_on(self) -> None:
        inner = self.folder / "inner"
        inner.mkdir()
        with Running(str(self.folder), "--live") as running:
            running.wait_for(_LIVE)
            (inner / "new.txt").touch()
            running.wait_for("          + inner/new.txt\n")
            self._assert_ends_well(running)

    def test_without_a_terminal_the_run_ends_by_itself(self) -> None:
        self.make("file.txt")
        with Running(str(self.folder)) as running:
            self.assertEqual(running.end(), 0)
            self.assertNotIn("Live.", running.output)
            self.assertTrue(running.output.endswith(f"{self.folder}/file.txt\n"))

    def test_hosts_of_every_age_live(self) -> None:
        for version in ("none", "2011.4", "2012.5", "2013.0", "2013.04", "3000"):
            with self.subTest(version=version):
                with Running(str(self.folder), "--live", "--host-version", version) as running:
                    running.wait_for(_LIVE)
                    path = self.make("file.txt")
                    running.wait_for("          + file.txt\n")
                    os.unlink(path)
                    running.wait_for("          - file.txt\n")
                    self._assert_ends_well(running)


if __name__ == "__main__":
    unittest.main()
