"""The picture of the rooms shows this tree, and the way of a call that the page describes leads through real functions."""

from __future__ import annotations

import os
import re
import tempfile
import unittest
from pathlib import Path

from pages import section, table_rows
from room_picture import PICTURE, picture, rooms

TREE = Path(os.environ["SOURCE_TREE"])


class RoomPicture(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = Path(folder.name)

    def include(self, where: str, *targets: str) -> None:
        """Lets a file include others, which are made where they are not there yet."""
        for path in (where, *targets):
            (self.tree / path).parent.mkdir(parents=True, exist_ok=True)
            (self.tree / path).touch()
        text = "".join(f'#include "{target}"\n' for target in targets)
        (self.tree / where).write_text(text, "utf-8")

    def arrows(self) -> int:
        return picture(self.tree).count("<path d") - 1  # the head of all arrows

    def test_the_picture_is_that_of_this_tree(self) -> None:
        drawn = (TREE / PICTURE).read_text("utf-8")
        self.assertEqual(drawn, picture(TREE), "draw it anew: python3 -B tests/house/room_picture.py .")

    def test_an_include_of_another_room_is_an_arrow_and_one_of_the_same_room_is_none(self) -> None:
        self.include("convert/a.cpp", "convert/a.h", "host/b.h")
        self.assertEqual(rooms(self.tree).inside["the product"].arrows, {("convert", "host")})
        self.assertEqual(self.arrows(), 1)

    def test_an_arrow_that_follows_from_others_is_left_out(self) -> None:
        self.include("convert/a.cpp", "host/b.h")
        self.include("spotlight/a.cpp", "convert/a.h", "host/b.h")
        self.assertEqual(len(rooms(self.tree).inside["the product"].arrows), 3)
        self.assertEqual(self.arrows(), 2)

    def test_rooms_in_different_folders_are_joined_where_the_folders_meet(self) -> None:
        self.include("simulator/session/a.cpp", "simulator/host/host.h", "simulator/macos/control/b.h")
        self.assertEqual(rooms(self.tree).inside["simulator"].arrows, {("session", "host"), ("session", "macos")})

    def test_who_includes_stands_above_what_is_included(self) -> None:
        self.include("plugin/a.cpp", "spotlight/a.h")
        text = picture(self.tree)
        heights = {name: int(y) for y, name in re.findall(r'<text x="\d+" y="(\d+)">(.+)</text>', text)}
        self.assertLess(heights["plugin"], heights["spotlight"])


class WayOfACall(unittest.TestCase):
    def test_each_step_is_a_function_in_the_file_that_the_page_names(self) -> None:
        page = (TREE / "docs/architecture.md").read_text("utf-8")
        steps = [row for row in table_rows(section(page, "The way of one call")) if row[0].startswith("`")]
        self.assertGreater(len(steps), 5)
        for where, functions, *_ in steps:
            source = (TREE / where.strip("`")).read_text("utf-8")
            for function in re.findall(r"`([^`]+)`", functions):
                with self.subTest(where, function=function):
                    self.assertRegex(source, rf"\b{function}\b")


if __name__ == "__main__":
    unittest.main()
