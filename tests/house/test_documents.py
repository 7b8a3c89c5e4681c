"""The pages under docs say what the code says: declarations, attribute keys, services, deliberate oddities, links."""

from __future__ import annotations

import os
import re
import unittest
from collections import Counter
from pathlib import Path

from declarations import TABLES, declared, keys
from pages import anchors, blocks, links, section, table_rows

TREE = Path(os.environ["SOURCE_TREE"])
REFERENCE = TREE / "docs/reference"
PAGES = {"": "ShotlightQTX.md"} | {name: f"{name}.md" for name in TABLES if name}
PRODUCT = ("plugin", "host", "convert", "spotlight")


def read(path: str) -> str:
    return (TREE / path).read_text("utf-8")


def product_sources() -> list[Path]:
    return sorted(path for room in PRODUCT for path in (TREE / room).rglob("*") if path.suffix in (".cpp", ".h"))


class ReferencePages(unittest.TestCase):
    def test_each_page_shows_exactly_the_declarations_of_its_class_to_the_letter(self) -> None:
        for class_name, page in PAGES.items():
            shown = [line for block in blocks((REFERENCE / page).read_text("utf-8")) if block.kind == "declaration"
                     for line in block.lines]
            with self.subTest(page):
                self.assertEqual(sorted(shown), sorted(declared(TREE, class_name)))

    def test_the_tables_were_read_whole(self) -> None:
        counts = {name: len(declared(TREE, name)) for name in TABLES}
        self.assertEqual(counts, {"MDQueryQTX": 41, "MDItemQTX": 19, "MDQueryBatchingParamsQTX": 6, "": 1})
        self.assertEqual(len(keys(TREE)), 169)

    def test_no_other_page_shows_a_declaration(self) -> None:
        for path in REFERENCE.glob("*.md"):
            if path.name not in PAGES.values():
                with self.subTest(path.name):
                    self.assertNotIn("declaration", [block.kind for block in blocks(path.read_text("utf-8"))])

    def test_every_fenced_block_of_a_class_page_says_what_it_is(self) -> None:
        for page in PAGES.values():
            kinds = {block.kind.split()[0] for block in blocks((REFERENCE / page).read_text("utf-8"))}
            self.assertLessEqual(kinds, {"declaration", "basic", "output"}, page)


class AttributeKeys(unittest.TestCase):
    def setUp(self) -> None:
        rows = table_rows((REFERENCE / "attribute-keys.md").read_text("utf-8"))
        self.rows = [row for row in rows if row[0].startswith("`")]

    def test_the_page_lists_exactly_the_declared_keys(self) -> None:
        self.assertEqual(Counter(row[0].strip("`") for row in self.rows), Counter(keys(TREE)))

    def test_types_and_multiplicity_are_those_of_the_simulators_schema(self) -> None:
        schema = read("simulator/macos/CoreServices/metadata/schema/attributes.def")
        known = {key: (kind, count) for key, kind, count in
                 re.findall(r"^SCHEMA_ATTRIBUTE(?:_10_7)?\((\w+), (\w+), (\w+),", schema, re.MULTILINE)}
        for key, kind, several, *_ in self.rows:
            if kind == "not stated":
                continue
            with self.subTest(key):
                known_kind, known_count = known[key.strip("`")]
                self.assertEqual((kind, several == "yes"), (known_kind, known_count == "Multiple"))


class HostInterface(unittest.TestCase):
    def setUp(self) -> None:
        self.page = read("docs/host-interface.md")

    def test_the_page_lists_exactly_the_services_that_the_plugin_asks_for(self) -> None:
        services = re.sub(r"//.*", "", read("host/services.h"))
        for name, text in re.findall(r'constexpr const char \*(\w+) = ("\w+");', services):
            services = re.sub(rf"\b{name}\}}", text + "}", services)
        asked = {tuple(re.findall(r'"(\w+)"', names)) for names in re.findall(r"\{(\s*\"[^}]*)\}", services)}
        start_up = read("host/capabilities.cpp") + read("plugin/main.cpp")
        asked |= {(name,) for name in re.findall(r'gResolver\("(\w+)"\)', start_up)}
        listed = {tuple(re.findall(r"`(\w+)`", row[0])) for row in table_rows(section(self.page, "Services"))}
        self.assertEqual(listed, asked)

    def test_the_page_lists_exactly_the_functions_that_the_plugin_loads_by_declaration(self) -> None:
        text = "".join(path.read_text("utf-8") for path in product_sources() if path.suffix == ".cpp")
        joined = re.sub(r'"\s*\n\s*"', "", text)
        loaded = set(re.findall(r'HostFunction<.*?\{"([^"]+)"\}', joined))
        loaded |= set(re.findall(r'(?:REALLoadObjectMethod\(\w+, |load\(\w+, |kConstructor = )"([^"]+)"', joined))
        listed = {row[0].strip("`") for row in table_rows(section(self.page, "Functions loaded by declaration"))}
        self.assertEqual(listed, loaded)

    def test_the_records_have_the_words_that_the_code_checks(self) -> None:
        checks = re.compile(r"static_assert\(sizeof\(REAL(\w+)\) == (\d+) \* kWord")
        asserted = dict(checks.findall(read("host/declarations.h")))
        stated = dict(re.findall(r"^### (\w+), (\d+) words$", self.page, re.MULTILINE))
        names = {"Class": "classDefinition", "Property": "property", "Method": "methodDefinition", "Event": "event",
                 "Constant": "constant", "Module": "moduleDefinition"}
        self.assertEqual({names[title]: count for title, count in stated.items()}, asserted)


class Deliberate(unittest.TestCase):
    def setUp(self) -> None:
        self.page = read("docs/deliberate.md")

    def test_every_marked_comment_has_its_row_and_every_row_its_comment(self) -> None:
        marked: Counter[str] = Counter()
        for path in product_sources():
            marked[str(path.relative_to(TREE))] += path.read_text("utf-8").count("Deliberate:")
        named = Counter(file for row in table_rows(section(self.page, "Marked in the code"))
                        for file in re.findall(r"`([\w/]+\.\w+)`", row[2]))
        self.assertEqual(named, +marked)

    def test_every_other_row_names_something_that_is_where_it_says(self) -> None:
        rows = table_rows(section(self.page, "Required as well"))
        self.assertTrue(rows)
        for row in rows:
            places = re.findall(r"`(\w+)` in `([\w/]+\.\w+)`", row[2])
            self.assertTrue(places, row[2])
            for name, file in places:
                with self.subTest(file=file, name=name):
                    self.assertRegex(read(file), rf"\b{name}\b")


class FrontPage(unittest.TestCase):
    def test_its_figures_are_those_of_the_sections_that_they_link_to(self) -> None:
        figures = re.findall(r"\[([^\]]*\d[^\]]*)\]\((docs/(?:proof|speed)\.md)#([\w-]+)\)", read("README.md"))
        self.assertTrue(figures)
        for text, page, anchor in figures:
            [there] = [part for part in re.split(r"^(?=#+ )", read(page), flags=re.MULTILINE) if anchor in anchors(part)]
            for number in re.findall(r"\d[\d.,]*\d|\d", text):
                with self.subTest(number=number, page=page):
                    self.assertIn(number, re.findall(r"\d[\d.,]*\d|\d", there))


class Links(unittest.TestCase):
    def test_every_link_leads_somewhere(self) -> None:
        pages = [*TREE.glob("*.md"), *(TREE / "docs").rglob("*.md"), *(TREE / "examples").glob("*.md")]
        for page in pages:
            for link in links(page.read_text("utf-8")):
                if "://" in link:
                    continue
                file, _, place = link.partition("#")
                target = page.parent / file if file else page
                with self.subTest(page=str(page.relative_to(TREE)), link=link):
                    self.assertTrue(target.exists())
                    if place:
                        self.assertIn(place, anchors(target.read_text("utf-8")))


if __name__ == "__main__":
    unittest.main()
