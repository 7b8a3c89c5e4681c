"""The site of the pages: nothing is left out of it, and the host's language has its colours."""

from __future__ import annotations

import os
import re
import sys
import unittest
from pathlib import Path

from pages import blocks

_TREE = Path(os.environ["SOURCE_TREE"])
sys.path.insert(0, str(_TREE / "docs/site"))

import contents  # noqa: E402
import host_code  # noqa: E402
from pygments.lexer import RegexLexer  # noqa: E402
from pygments.token import Error, Keyword, Operator  # noqa: E402


class Contents(unittest.TestCase):
    def test_every_page_is_in_the_site(self) -> None:
        listed = {contents.HOME, *contents.pages(_TREE, contents.PROGRAMMERS), *contents.pages(_TREE, contents.EVERYBODY_ELSE)}
        written = [*(_TREE / "docs").rglob("*.md"), *_TREE.glob("*.md"), *(_TREE / "examples").glob("*.md"),
                   *(_TREE / "examples").rglob("*.bas")]
        self.assertEqual({str(path.relative_to(_TREE).with_suffix("")) for path in written} - listed, set())

    def test_no_page_is_both_for_host_programmers_and_for_everybody_else(self) -> None:
        both = set(contents.pages(_TREE, contents.PROGRAMMERS)) & set(contents.pages(_TREE, contents.EVERYBODY_ELSE))
        self.assertEqual(both, set())


class Colours(unittest.TestCase):
    def test_every_word_that_the_simulator_reserves_has_the_colour_of_one(self) -> None:
        parser = (_TREE / "simulator/language/parser.cpp").read_text("utf-8")
        reserved = re.findall(r'"(\w+)"', re.findall(r"kReserved\[\] = \{(.*?)\};", parser, re.DOTALL)[0])
        self.assertGreater(len(reserved), 50)
        for word in reserved:
            [(kind, _), *_] = host_code.HostLexer().get_tokens(word)
            self.assertTrue(kind in Keyword or kind in Operator, word)

    def test_all_code_on_the_pages_and_every_example_is_understood(self) -> None:
        lexers: dict[str, RegexLexer] = {"basic": host_code.HostLexer(), "declaration": host_code.DeclarationLexer()}
        shown = [(block.kind.split()[0], "\n".join(block.lines), page.name) for page in (_TREE / "docs").rglob("*.md")
                 for block in blocks(page.read_text("utf-8")) if block.kind]
        shown += [("basic", path.read_text("utf-8"), path.name) for path in (_TREE / "examples").rglob("*.bas")]
        for kind, code, name in shown:
            if kind in lexers:
                with self.subTest(name, code=code):
                    self.assertNotIn(Error, {token for token, _ in lexers[kind].get_tokens(code)})


if __name__ == "__main__":
    unittest.main()
