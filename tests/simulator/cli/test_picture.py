"""The picture of a live run on the front page shows what a run shows."""

from __future__ import annotations

import os
import sys
import unittest
from pathlib import Path

_TREE = Path(__file__).resolve().parents[3]
sys.path.insert(0, str(_TREE / "docs/pictures"))

import live_run  # noqa: E402


class Picture(unittest.TestCase):
    def test_a_run_shows_what_the_picture_shows(self) -> None:
        drawn = live_run.words((_TREE / "docs/pictures/live-run.svg").read_text("utf-8"))
        self.assertGreater(len(drawn), 10)
        shown = live_run.picture(live_run.run(Path(os.environ["PROGRAM"]), Path(os.environ["PLUGIN"])))
        self.assertEqual(live_run.words(shown), drawn, "make it anew: ./dev docs --picture docs/pictures/live-run.svg")


if __name__ == "__main__":
    unittest.main()
