"""The check of commits' subjects sees those that are too long, and only since there is such a check."""

from __future__ import annotations

import subprocess
import tempfile
import unittest
from pathlib import Path

import commit_subjects


class CommitSubjects(unittest.TestCase):
    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.tree = Path(temporary.name).resolve()

    def _git(self, *arguments: str) -> None:
        settings = ["-c", "user.name=A", "-c", "user.email=a@example.com", "-c", "commit.gpgsign=false"]
        subprocess.run(["git", *settings, *arguments], cwd=self.tree, check=True, capture_output=True)

    def _commit(self, subject: str, name: str = "file") -> None:
        path = self.tree / name
        path.write_text(subject, "utf-8")
        self._git("add", name)
        self._git("commit", "-m", f"{subject}\n\nA body may have lines of any length. {'x' * 100}")

    def test_a_subject_that_does_not_fit_a_line_is_found(self) -> None:
        self._git("init")
        self._commit("o" * 80)
        self._commit("Check subjects", "check")
        self._commit("é" * commit_subjects.LONGEST)
        self.assertEqual(commit_subjects.too_long(self.tree, "check"), [])
        self._commit("n" * (commit_subjects.LONGEST + 1))
        self.assertEqual(commit_subjects.too_long(self.tree, "check"), ["n" * (commit_subjects.LONGEST + 1)])

    def test_without_a_repository_there_is_nothing_to_say(self) -> None:
        self.assertEqual(commit_subjects.too_long(self.tree), [])


if __name__ == "__main__":
    unittest.main()
