"""The syntax tree of the product's sources, as clang has it: what the makers of faults look at."""

from __future__ import annotations

from collections.abc import Iterator
from dataclasses import dataclass, field
from pathlib import Path

from clang.cindex import Cursor, CursorKind, Index

FUNCTIONS = {
    CursorKind.FUNCTION_DECL,
    CursorKind.FUNCTION_TEMPLATE,
    CursorKind.CXX_METHOD,
    CursorKind.CONSTRUCTOR,
    CursorKind.DESTRUCTOR,
    CursorKind.CONVERSION_FUNCTION,
    CursorKind.LAMBDA_EXPR,
}
# Nothing in these is code that runs.
_NOT_CODE = {CursorKind.STATIC_ASSERT, CursorKind.PARM_DECL, CursorKind.TYPEDEF_DECL, CursorKind.TYPE_ALIAS_DECL}


@dataclass(eq=False)
class Node:
    """One node of the tree whose text stands in the file itself, not in a macro's definition."""

    cursor: Cursor
    source: Source
    parent: Node | None
    function: Node | None
    children: list[Node] = field(default_factory=list)

    @property
    def kind(self) -> CursorKind:
        """What clang calls it."""
        return self.cursor.kind

    @property
    def start(self) -> int:
        """The first byte."""
        return self.cursor.extent.start.offset

    @property
    def end(self) -> int:
        """Behind the last byte."""
        return self.cursor.extent.end.offset

    @property
    def text(self) -> str:
        """As it stands in the file."""
        return self.source.bytes[self.start : self.end].decode()

    @property
    def type(self) -> str:
        """The type's own name, whatever it is called here."""
        return self.cursor.type.get_canonical().spelling

    def core(self) -> Node:
        """Without the conversions that clang wraps around what is written."""
        node = self
        while node.kind == CursorKind.UNEXPOSED_EXPR and len(node.children) == 1 and node.children[0].text == node.text:
            node = node.children[0]
        return node

    def walk(self) -> Iterator[Node]:
        """This node and all below, in the order of the text."""
        yield self
        for child in self.children:
            yield from child.walk()

    def above(self) -> Iterator[Node]:
        """Those that this one is in, from the inside."""
        node = self.parent
        while node:
            yield node
            node = node.parent


@dataclass(eq=False)
class Source:
    """A file of the product and the nodes in it."""

    file: str
    bytes: bytes
    roots: list[Node] = field(default_factory=list)

    def walk(self) -> Iterator[Node]:
        """All nodes."""
        for root in self.roots:
            yield from root.walk()


def read_source(tree: Path, file: str, compiled: str, flags: list[str]) -> Source:
    """The tree of a file, which is `compiled` or a header that it includes."""
    unit = Index.create().parse(str(tree / compiled), args=flags)
    errors = [error.spelling for error in unit.diagnostics if error.severity >= 3]
    if errors:
        raise SystemExit(f"mutate: clang cannot read {compiled}: {errors[0]}")
    source = Source(file, (tree / file).read_bytes())
    path = str(tree / file)
    for cursor in unit.cursor.get_children():
        # A namespace may begin in one file only, and so may whatever else is looked at.
        if cursor.extent.start.file and cursor.extent.start.file.name == path:
            _add(source, cursor, None, source.roots)
    return source


def _add(source: Source, cursor: Cursor, parent: Node | None, siblings: list[Node]) -> None:
    if cursor.kind in _NOT_CODE or cursor.kind.is_attribute():
        return
    if not cursor.extent.start.file or cursor.extent.start.file.name.split("/")[-1] != source.file.split("/")[-1]:
        return
    function = parent
    while function and function.kind not in FUNCTIONS:
        function = function.parent
    node = Node(cursor, source, parent, function)
    siblings.append(node)
    for child in cursor.get_children():
        _add(source, child, node, node.children)
