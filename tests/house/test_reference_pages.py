"""The reference: every member in the same form, the exceptions that the table has, an index that leaves nothing out, and
examples with their output."""

from __future__ import annotations

import os
import re
import tempfile
import unittest
from collections import Counter
from pathlib import Path

import example_folder
from declarations import TABLES, declared, keys
from pages import anchors, blocks, links, table_rows
from snippets import snippets

TREE = Path(os.environ["SOURCE_TREE"])
REFERENCE = TREE / "docs/reference"
GUIDES = TREE / "docs/guides"
CLASS_PAGES = {name or "ShotlightQTX": REFERENCE / f"{name or 'ShotlightQTX'}.md" for name in TABLES}
PRODUCT = ("plugin", "host", "convert", "spotlight")

_NOT_MEMBERS = {"What holds everywhere", "Constants", "Attribute keys"}
_PROPERTY = re.compile(r"(\w+) as \w+(\(\))?")
_METHOD = re.compile(r"(\w+)(?:\((.*?)\))?(?: as (\w+(?:\(\))?))?", re.IGNORECASE)

# The parts of a member's entry in their order; "?" for those that not every entry has.
_PARTS = ["declaration", "sentence", "parameters?", "returns?", "raises", "notes?", "ownership", "availability", "code",
          "output", "see also"]


def read(path: Path) -> str:
    return path.read_text("utf-8")


def entries(text: str) -> dict[str, str]:
    """The entries of a class page by name: what stands under the headings of the third level."""
    found = {}
    for group in re.split(r"^## ", text, flags=re.MULTILINE)[1:]:
        title, _, body = group.partition("\n")
        if title in _NOT_MEMBERS:
            continue
        for part in re.split(r"^### ", body, flags=re.MULTILINE)[1:]:
            name, _, entry = part.partition("\n")
            if name != "Handling events":
                found[name] = entry
    return found


def parts(entry: str) -> list[str]:
    """What an entry consists of, in its order; the paragraphs of one part count once."""
    found: list[str] = []
    for paragraph in paragraphs(entry):
        first = paragraph[0]
        if first == "```declaration":
            kind = "declaration"
        elif first.startswith("```basic"):
            kind = "code"
        elif first == "```output":
            kind = "output"
        elif first.startswith("| Parameter |"):
            kind = "parameters"
        elif first.startswith("| Exception |"):
            kind = "table of exceptions"
        elif match := re.match(r"\*\*(Returns|Raises|Ownership|Availability|See also)\*\*", first):
            kind = match[1].lower()
        elif first.startswith("- "):
            kind = "notes"
        else:
            kind = "sentence"
        if kind not in ("table of exceptions", *found[-1:]):
            found.append(kind)
    return found


def paragraphs(entry: str) -> list[list[str]]:
    found: list[list[str]] = [[]]
    is_open = False
    for line in entry.splitlines():
        if line.startswith("```"):
            is_open = not is_open
        if line or is_open:
            found[-1].append(line)
        elif found[-1]:
            found.append([])
    return [paragraph for paragraph in found if paragraph]


def rows_under(entry: str, head: str) -> list[list[str]]:
    """The rows of an entry's table with that head."""
    for paragraph in paragraphs(entry):
        if paragraph[0].startswith(head):
            return table_rows("\n".join(paragraph))
    return []


def exception_rows() -> list[list[str]]:
    """Member, exception, message, cause."""
    return [line.split("\t") for line in read(REFERENCE / "exceptions.tsv").splitlines()[1:]]


def golden_declarations() -> dict[str, list[str]]:
    """What the library registers with a host of the current layout, by class; "" for what is global."""
    found: dict[str, list[str]] = {}
    name = ""
    for line in read(TREE / "tests/plugin/golden/registered.txt").splitlines():
        if match := re.match(r'(class|module) "(\w+)"', line):
            name = match[2] if match[1] == "class" else ""
        elif match := re.match(r'  property "(\w+)" as "(\w+)"', line):
            found.setdefault(name, []).append(f"{match[1]} as {match[2]}")
        elif match := re.match(r'  (?:shared method|method|event|constant) "(.*)" (?:flags|other|link) ', line):
            found.setdefault(name, []).append(match[1])
    return found


class Entries(unittest.TestCase):
    def each(self) -> list[tuple[str, str, str]]:
        found = [(name, member, entry) for name, page in CLASS_PAGES.items()
                 for member, entry in entries(read(page)).items()]
        self.assertEqual(len(found), 27 + 19 + 6 + 1)
        return found

    def test_every_declared_member_has_one_entry_and_no_other_thing_has_one(self) -> None:
        for name, page in CLASS_PAGES.items():
            texts = declared(TREE, name if name in TABLES else "")
            members = {re.match(r"\w+", text)[0] for text in texts if "=" not in text.split(" as ")[0].split("(")[0]}
            with self.subTest(name):
                self.assertEqual(set(entries(read(page))), members)

    def test_every_entry_shows_the_declarations_of_its_member(self) -> None:
        for name, member, entry in self.each():
            texts = [text for text in declared(TREE, name if name in TABLES else "")
                     if re.match(r"\w+", text)[0] == member]
            shown = [line for block in blocks(entry) if block.kind == "declaration" for line in block.lines]
            with self.subTest(f"{name}.{member}"):
                self.assertEqual(shown, texts)

    def test_every_entry_has_the_same_parts_in_the_same_order(self) -> None:
        allowed = [part.rstrip("?") for part in _PARTS]
        for name, member, entry in self.each():
            found = parts(entry)
            with self.subTest(f"{name}.{member}"):
                self.assertEqual(found, [part for part in allowed if part in found])
                self.assertEqual([part for part in _PARTS if not part.endswith("?") and part not in found], [])

    def test_every_entry_lists_exactly_the_parameters_of_its_declarations(self) -> None:
        for name, member, entry in self.each():
            wanted: list[str] = []
            for block in blocks(entry):
                if block.kind == "declaration":
                    for line in block.lines:
                        match = _METHOD.fullmatch(line)
                        for part in (match[2] or "").split(",") if match else []:
                            if part and (word := part.split()[0].removesuffix("()")) not in wanted:
                                wanted.append(word)
            rows = rows_under(entry, "| Parameter |")
            listed = [row[0].strip("`") for row in rows if row[0]]
            with self.subTest(f"{name}.{member}"):
                self.assertEqual(sorted(listed), sorted(wanted))
                self.assertTrue(all(row[1] and row[2] for row in rows), "a range or a meaning is missing")

    def test_an_entry_says_what_is_returned_when_something_is(self) -> None:
        for name, member, entry in self.each():
            block = next(block for block in blocks(entry) if block.kind == "declaration")
            has_result = bool(re.search(r"\) as \w+(\(\))?$|^\w+ as ", block.lines[0])) or member == "Constructor"
            with self.subTest(f"{name}.{member}"):
                self.assertEqual("returns" in parts(entry), has_result)

    def test_every_entry_leads_on_to_others(self) -> None:
        for name, member, entry in self.each():
            with self.subTest(f"{name}.{member}"):
                self.assertTrue(links(entry.split("**See also**")[1]))

    def test_an_entry_without_output_and_one_in_disorder_are_found(self) -> None:
        self.assertEqual(parts("```declaration\nStop\n```\n\nStops.\n\n**Ownership** None.\n\n**Raises** nothing.\n"),
                         ["declaration", "sentence", "ownership", "raises"])


class Declarations(unittest.TestCase):
    def test_the_pages_declare_what_the_library_registers(self) -> None:
        registered = golden_declarations()
        self.assertEqual(sorted(registered), sorted(TABLES))
        for name, texts in registered.items():
            page = CLASS_PAGES[name or "ShotlightQTX"]
            shown = [line for block in blocks(read(page)) if block.kind == "declaration" for line in block.lines]
            with self.subTest(page.name):
                self.assertEqual(Counter(shown), Counter(text for text in texts if not text.startswith("kMDItem")))

    def test_the_keys_are_those_that_the_library_registers(self) -> None:
        registered = [text for text in golden_declarations()["MDItemQTX"] if text.startswith("kMDItem")]
        self.assertEqual(registered, [f"{key} as string" for key in keys(TREE)])


class Exceptions(unittest.TestCase):
    def test_the_entries_raise_exactly_what_the_table_has(self) -> None:
        listed = [[f"{name}.{member}", row[0].strip("`"), row[1], row[2]] for name, page in CLASS_PAGES.items()
                  for member, entry in entries(read(page)).items() for row in rows_under(entry, "| Exception |")]
        self.assertEqual(sorted(listed), sorted(row for row in exception_rows() if row[0] != "*"))

    def test_an_entry_without_a_table_says_that_it_raises_nothing(self) -> None:
        for name, page in CLASS_PAGES.items():
            for member, entry in entries(read(page)).items():
                with self.subTest(f"{name}.{member}"):
                    self.assertEqual("**Raises** nothing." in entry, not rows_under(entry, "| Exception |"))

    def test_the_page_of_exceptions_has_every_message_with_every_member_that_raises_it(self) -> None:
        wanted: dict[tuple[str, str], set[str]] = {}
        for member, exception, message, cause in exception_rows():
            wanted.setdefault((exception, message), set()).add(cause if member == "*" else member)
        listed: dict[tuple[str, str], set[str]] = {}
        for row in table_rows(read(REFERENCE / "exceptions.md")):
            if len(row) == 4:
                members = re.findall(r"\[(\w+\.\w+)\]", row[2]) or [row[2]]
                listed.setdefault((row[0].strip("`"), row[1]), set()).update(members)
        self.assertEqual(listed, wanted)

    def test_every_message_in_the_product_is_in_the_table(self) -> None:
        messages = {row[2] for row in exception_rows()}
        shapes = {re.sub(r"\*\w+\*", "*", message) for message in messages}
        found = set()
        for path in (path for room in PRODUCT for path in (TREE / room).glob("*.cpp")):
            found |= set(re.findall(r'\bRaise(?:Exception|Caught)\("\w+", "([^"]+)"\)', read(path)))
        self.assertGreaterEqual(len(found), 6)
        self.assertLessEqual(found, shapes)


class Index(unittest.TestCase):
    def setUp(self) -> None:
        self.rows = [row for row in table_rows(read(REFERENCE / "index.md")) if row[0].startswith("[")]

    def test_the_index_has_every_member_constant_event_and_key_once(self) -> None:
        wanted = Counter(TABLES.keys() - {""})
        for name in TABLES:
            for word in {re.match(r"\w+", text)[0] for text in declared(TREE, name)}:
                wanted[f"{name}.{word}" if name else word] += 1
        wanted.update(f"MDItemQTX.{key}" for key in keys(TREE))
        listed = Counter(re.match(r"\[([\w.]+)\]", row[0])[1] for row in self.rows)
        self.assertEqual(listed, wanted)

    def test_the_index_is_in_the_order_of_the_alphabet(self) -> None:
        names = [re.match(r"\[([\w.]+)\]", row[0])[1] for row in self.rows]
        self.assertEqual(names, sorted(names, key=lambda name: (name.rpartition(".")[2].lower(), name)))

    def test_an_entry_of_the_index_leads_to_the_entry_of_its_member(self) -> None:
        for row in self.rows:
            name = re.match(r"\[([\w.]+)\]", row[0])[1].rpartition(".")[2]
            page, _, place = links(row[0])[0].partition("#")
            with self.subTest(name):
                text = read(REFERENCE / page)
                if place == "constants" or page == "attribute-keys.md":
                    self.assertIn(name, text)
                elif place:
                    self.assertEqual(place, name.lower())
                    self.assertIn(place, anchors(text))
                else:
                    self.assertTrue(text.startswith(f"# {name}\n"))

    def test_every_page_for_host_programmers_leads_to_the_index(self) -> None:
        for page in (*REFERENCE.glob("*.md"), *GUIDES.glob("*.md")):
            if page.name != "index.md":
                with self.subTest(page.name):
                    wanted = "index.md" if page.parent == REFERENCE else "../reference/index.md"
                    self.assertIn(wanted, links(read(page)))


class Handbook(unittest.TestCase):
    """The page of the handbook and its table as data, which a test of the product tries row by row."""

    def setUp(self) -> None:
        self.rows = [line.split("\t") for line in read(REFERENCE / "attribute-handbook.tsv").splitlines()[1:]]

    def test_the_page_shows_the_table(self) -> None:
        listed = [row for row in table_rows(read(REFERENCE / "attribute-handbook.md"))
                  if row[0].startswith("`kMDItem") and len(row) == 5]
        wanted = [[f"`{key}`", host, sample or "not stated",
                   f"`{query}`" if query else "none: use a [scope](../guides/scopes.md)", since]
                  for key, _, _, since, host, sample, query in self.rows]
        self.assertEqual(listed, wanted)

    def test_types_and_first_systems_are_those_of_the_page_of_keys(self) -> None:
        stated = {row[0].strip("`"): [row[1], row[2] or "no", row[3].split()[0]]
                  for row in table_rows(read(REFERENCE / "attribute-keys.md")) if row[0].startswith("`")}
        self.assertEqual({row[0]: row[1:4] for row in self.rows}, stated)
        self.assertEqual(len(self.rows), len(stated))


class Examples(unittest.TestCase):
    def test_every_program_on_a_page_is_followed_by_what_it_prints(self) -> None:
        for page in (TREE / "README.md", *REFERENCE.glob("*.md"), *GUIDES.glob("*.md")):
            for snippet in snippets(read(page)):
                with self.subTest(page=page.name, line=snippet.block.first_line):
                    prints = any(re.search(r"\bPrint\b", line) for line in snippet.lines())
                    prepares = snippet.block.kind.startswith("basic as ")
                    self.assertEqual(snippet.output is not None, prints and not prepares)

    def test_every_output_belongs_to_a_program(self) -> None:
        for page in (TREE / "README.md", *REFERENCE.glob("*.md"), *GUIDES.glob("*.md")):
            text = read(page)
            outputs = [block for block in blocks(text) if block.kind == "output"]
            with self.subTest(page.name):
                self.assertEqual(len(outputs), len([one for one in snippets(text) if one.output is not None]))

    def test_the_page_of_the_example_folder_shows_its_files_with_their_sizes_dates_and_attributes(self) -> None:
        listed = [[cell.replace("`", "") for cell in row] for row in table_rows(read(REFERENCE / "example-folder.md"))]
        wanted = []
        for file in example_folder.files(TREE):
            path = TREE / "examples/folder" / file.name
            size = "" if path.is_dir() else str(path.stat().st_size)
            attributes = "; ".join(f"{key} {', '.join(values)}" for key, values in file.attributes.items())
            wanted.append([file.name, size, file.changed.strftime("%Y-%m-%d %H:%M:%S"), attributes])
        self.assertEqual(listed, wanted)
        on_disk = {str(path.relative_to(TREE / "examples/folder")) for path in (TREE / "examples/folder").rglob("*")}
        self.assertEqual(on_disk, {row[0] for row in wanted})

    def test_the_example_folder_can_be_made(self) -> None:
        with tempfile.TemporaryDirectory(dir=example_folder.place()) as place:
            folder = Path(place, "Documents")
            example_folder.make(TREE, folder)
            for file in example_folder.files(TREE):
                self.assertEqual((folder / file.name).stat().st_mtime, file.changed.timestamp())
            self.assertEqual(os.getxattr(folder / "minutes.txt", "user.kMDItemAuthors"), b"Ada Lovelace\nCharles Babbage")


if __name__ == "__main__":
    unittest.main()
