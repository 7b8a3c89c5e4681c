"""Each function of the system that the library may call can be told of by a trace, with its arguments."""

from __future__ import annotations

import os
import re
import unittest
from pathlib import Path

_TREE = Path(os.environ["SOURCE_TREE"])


class SystemFunctions(unittest.TestCase):
    def test_the_list_of_known_functions_is_that_of_the_imports(self) -> None:
        imported = set()
        for path in (_TREE / "platform" / "imports").glob("*.txt"):
            text = path.read_text("utf-8")
            if re.search(r"^library /System/Library/Frameworks/", text, re.MULTILINE):
                imported |= set(re.findall(r"^(?:weak )?function _(\w+)", text, re.MULTILINE))
        # Those that ask for a type's identifier take no arguments, and are known by their names' end.
        imported = {name for name in imported if not name.endswith("GetTypeID")} | {"CFGetTypeID"}
        source = (_TREE / "simulator/session/system_functions.cpp").read_text("utf-8")
        self.assertEqual(sorted(re.findall(r'^ +\{"(\w+)", "', source, re.MULTILINE)), sorted(imported))


if __name__ == "__main__":
    unittest.main()
