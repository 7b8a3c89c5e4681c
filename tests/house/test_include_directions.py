"""The include-direction check holds for this tree, and it does find what it is there to find."""

from __future__ import annotations

import os
import tempfile
import unittest
from pathlib import Path

from include_directions import MAY_INCLUDE, misdirected


class IncludeDirections(unittest.TestCase):
    def found_with(self, **files: str) -> list[str]:
        """What the check finds in a tree of these files, their names written with __ for a slash and _dot_ for a dot."""
        with tempfile.TemporaryDirectory() as folder:
            for name, text in files.items():
                path = Path(folder, name.replace("__", "/").replace("_dot_", "."))
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, "utf-8")
            return misdirected(Path(folder))

    def test_every_include_of_this_tree_points_the_right_way(self) -> None:
        self.assertEqual(misdirected(Path(os.environ["SOURCE_TREE"])), [])

    def test_every_room_of_the_table_exists(self) -> None:
        for room in MAY_INCLUDE:
            self.assertTrue(Path(os.environ["SOURCE_TREE"], room).is_dir(), room)

    def test_a_room_may_include_those_behind_it(self) -> None:
        self.assertEqual(self.found_with(plugin__a_dot_cpp='#include "host/b.h"\n', host__b_dot_h=""), [])

    def test_a_room_may_not_include_those_before_it(self) -> None:
        found = self.found_with(host__a_dot_cpp='#include "plugin/b.h"\n', plugin__b_dot_h="")
        self.assertEqual(found, ["host/a.cpp: may not include plugin/b.h"])

    def test_the_product_may_not_include_the_simulator(self) -> None:
        found = self.found_with(plugin__a_dot_h='  # include "simulator/host/host.h"\n')
        self.assertEqual(found, ["plugin/a.h: may not include simulator/host/host.h"])

    def test_angle_brackets_are_no_way_around(self) -> None:
        found = self.found_with(plugin__a_dot_h="#include <simulator/host/host.h>\n#include <CoreFoundation/CFBase.h>\n")
        self.assertEqual(found, ["plugin/a.h: may not include simulator/host/host.h"])

    def test_the_stand_in_host_and_the_stand_in_system_may_not_include_each_other(self) -> None:
        found = self.found_with(
            simulator__host__a_dot_h='#include "simulator/macos/control/b.h"\n',
            simulator__macos__control__b_dot_h='#include "simulator/host/a.h"\n',
        )
        self.assertEqual(len(found), 2)

    def test_inside_the_stand_in_system_arrows_run_one_way_too(self) -> None:
        found = self.found_with(simulator__macos__control__a_dot_h='#include "simulator/macos/CoreFoundation/b.h"\n')
        self.assertEqual(found, ["simulator/macos/control/a.h: may not include simulator/macos/CoreFoundation/b.h"])

    def test_inside_the_stand_in_host_arrows_run_one_way_too(self) -> None:
        found = self.found_with(
            simulator__host__runtime__a_dot_h='#include "simulator/host/program/b.h"\n',
            simulator__host__services__a_dot_h='#include "simulator/host/program/b.h"\n',
            simulator__host__program__b_dot_h='#include "simulator/host/host.h"\n',
            simulator__host__host_dot_h='#include "simulator/host/program/b.h"\n',
        )
        self.assertEqual(
            found,
            [
                "simulator/host/program/b.h: may not include simulator/host/host.h",
                "simulator/host/runtime/a.h: may not include simulator/host/program/b.h",
                "simulator/host/services/a.h: may not include simulator/host/program/b.h",
            ],
        )

    def test_a_room_within_a_room_stands_for_itself(self) -> None:
        query = "simulator/macos/CoreServices/metadata/query/b.h"
        found = self.found_with(
            simulator__macos__CoreServices__a_dot_cpp=f'#include "{query}"\n',
            simulator__session__a_dot_cpp=f'#include "{query}"\n',
            **{query.replace("/", "__").replace(".", "_dot_"): ""},
        )
        self.assertEqual(found, [f"simulator/macos/CoreServices/a.cpp: may not include {query}"])

    def test_an_include_relative_to_the_file_is_not_accepted(self) -> None:
        found = self.found_with(host__a_dot_cpp='#include "a.h"\n', host__a_dot_h="")
        self.assertEqual(found, ["host/a.cpp: may not include a.h"])

    def test_an_include_of_nothing_is_found(self) -> None:
        found = self.found_with(host__a_dot_cpp='#include "host/b.h"\n')
        self.assertEqual(found, ["host/a.cpp: includes host/b.h, which does not exist"])


if __name__ == "__main__":
    unittest.main()
