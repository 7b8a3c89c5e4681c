"""The report of the coverage: a line for each room, and a complaint where the tests reach too little."""

from __future__ import annotations

import unittest
from pathlib import Path

import coverage

_TREE = Path("/a tree")


def _summary(**rooms: tuple[int, int]) -> object:
    """What llvm-cov exports, with one file a room: so many of a hundred lines and of a hundred branches."""
    files = [
        {
            "filename": f"{_TREE}/{room}/file.cpp",
            "summary": {"lines": {"covered": lines, "count": 100}, "branches": {"covered": branches, "count": 100}},
        }
        for room, (lines, branches) in rooms.items()
    ]
    return {"data": [{"files": files}]}


class Coverage(unittest.TestCase):
    def test_a_file_named_from_the_build_folder_up_belongs_to_its_room(self) -> None:
        summary = _summary(host=(1, 1))
        summary["data"][0]["files"][0]["filename"] = f"{_TREE}/build/coverage/../../host/file.cpp"
        self.assertEqual(set(coverage.shares(_TREE, summary)), {"host", "all"})

    def test_each_room_has_its_line_and_all_of_them_together(self) -> None:
        found = coverage.shares(
            _TREE, _summary(plugin=(100, 99), host=(98, 97), convert=(100, 100), spotlight=(100, 100))
        )
        self.assertEqual(
            coverage.report(found).splitlines(),
            [
                "room        lines                 branches",
                "plugin      100.00 % of 100        99.00 % of 100",
                "host         98.00 % of 100        97.00 % of 100",
                "convert     100.00 % of 100       100.00 % of 100",
                "spotlight   100.00 % of 100       100.00 % of 100",
                "all          99.50 % of 400        99.00 % of 400",
            ],
        )
        self.assertEqual(coverage.complaints(found), [])

    def test_a_file_that_is_named_by_way_of_the_build_folder_is_one_of_the_tree(self) -> None:
        summary = _summary(**{"build/coverage/../../host": (100, 100)})
        self.assertEqual(coverage.shares(_TREE, summary)["host"]["lines"].count, 100)

    def test_what_is_not_the_product_is_not_counted(self) -> None:
        found = coverage.shares(_TREE, _summary(tests=(0, 0), simulator=(0, 0), host=(100, 100)))
        self.assertEqual(set(found), {"host", "all"})
        self.assertEqual(found["all"]["lines"].count, 100)

    def test_too_few_lines_or_branches_are_complained_about(self) -> None:
        whole = {room: (100, 100) for room in coverage.ROOMS}
        for place, what in enumerate(coverage.FLOORS):
            reached = [100, 100]
            reached[place] = 50
            found = coverage.shares(_TREE, _summary(**{**whole, "host": tuple(reached)}))
            self.assertEqual(
                coverage.complaints(found),
                [f"87.50 % of the {what} are below the floor, {coverage.FLOORS[what]:.2f} %"],
            )

    def test_a_room_of_which_nothing_was_counted_is_complained_about(self) -> None:
        found = coverage.shares(_TREE, _summary(plugin=(9, 9), host=(9, 9), convert=(9, 9)))
        self.assertIn("nothing of spotlight was counted", coverage.complaints(found))
        self.assertEqual(len(coverage.complaints(coverage.shares(_TREE, _summary()))), len(coverage.ROOMS))


if __name__ == "__main__":
    unittest.main()
