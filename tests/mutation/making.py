"""What the makers of faults share: how a node, or what lies between two, becomes a fault."""

from __future__ import annotations

import re

from clang.cindex import CursorKind

from faults import Fault
from syntax import Node

STATEMENT_BLOCKS = {CursorKind.COMPOUND_STMT, CursorKind.CASE_STMT, CursorKind.DEFAULT_STMT}


def fault(node: Node, kind: str, text: str, start: int | None = None, end: int | None = None) -> Fault:
    """The node's text, or what stands from start to end, gives way to another one."""
    first = node.start if start is None else start
    last = node.end if end is None else end
    function = node if node.kind == CursorKind.LAMBDA_EXPR else node.function
    span = None
    if function:
        span = (function.cursor.extent.start.line, function.cursor.extent.end.line)
    return Fault(
        file=node.source.file,
        start=first,
        end=last,
        text=text,
        kind=kind,
        line=node.source.bytes.count(b"\n", 0, first) + 1,
        function=span,
        at_compile_time=function is not None and is_constexpr(function),
        function_name=_name(function),
        variable="" if function else _variable(node),
    )


def _name(function: Node | None) -> str:
    """Its own, or that of the function in which a lambda stands."""
    while function and function.kind == CursorKind.LAMBDA_EXPR:
        function = function.function
    return str(function.cursor.spelling) if function else ""


def _variable(node: Node) -> str:
    for outer in (node, *node.above()):
        if outer.kind == CursorKind.VAR_DECL and not is_constexpr(outer):
            return str(outer.cursor.spelling)
    return ""


def is_constexpr(function: Node) -> bool:
    """Whether the compiler may run the function, or may reckon with the variable; clang's interface tells it by the words
    before the name only."""
    head = function.source.bytes[function.start : function.end].split(b"{", 1)[0]
    return re.search(rb"\bconstexpr\b", head) is not None


def statement_end(node: Node) -> int:
    """Behind the semicolon that belongs to an expression; a statement that is no expression ends by itself."""
    rest = node.source.bytes[node.end :]
    gap = len(rest) - len(rest.lstrip())
    return node.end + gap + 1 if rest[gap : gap + 1] == b";" else node.end


def mentions(node: Node, name: str) -> bool:
    """Whether the name stands in the node's text."""
    return bool(name) and re.search(rf"\b{re.escape(name)}\b", node.text) is not None


def between(left: Node, right: Node) -> tuple[int, int, str]:
    """Where the word between two nodes stands, which is an operator, and the word."""
    gap = left.source.bytes[left.end : right.start].decode()
    word = gap.strip()
    start = left.end + len(gap) - len(gap.lstrip())
    return start, start + len(word), word
