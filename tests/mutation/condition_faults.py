"""Faults in what is asked and reckoned: a condition negated, a part of it gone, a bound moved, another operator."""

from __future__ import annotations

from collections.abc import Iterator

from clang.cindex import CursorKind

from faults import Fault
from making import between, fault
from syntax import Node, Source

_ASKING = {CursorKind.IF_STMT, CursorKind.WHILE_STMT, CursorKind.CONDITIONAL_OPERATOR}
_MOVED = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
_OTHER = {"+": "-", "-": "+", "*": "+", "/": "*", "&": "|", "|": "&", ">>": "<<", "<<": ">>", "|=": "="}
_PARTS = {"&&", "||"}


def condition_faults(source: Source) -> Iterator[Fault]:
    """All faults of this family."""
    for node in source.walk():
        if node.kind in _ASKING:
            yield from _negated(node)
        if node.kind == CursorKind.CONDITIONAL_OPERATOR:
            yield from _always(node)
        elif node.kind in {CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR}:
            yield from _operator(node)
        elif node.kind == CursorKind.UNARY_OPERATOR:
            yield from _unary(node)


def _negated(node: Node) -> Iterator[Fault]:
    condition = node.children[0].core()
    if not condition.kind.is_expression():
        return
    if condition.kind == CursorKind.BINARY_OPERATOR and len(condition.children) == 2:
        if between(*condition.children)[2] in {"==", "!="}:
            return  # done by the operator
    if condition.kind == CursorKind.UNARY_OPERATOR and condition.text.startswith("!"):
        yield fault(condition, "condition negated", condition.text[1:])
    else:
        yield fault(condition, "condition negated", f"!({condition.text})")


def _always(node: Node) -> Iterator[Fault]:
    """Only one of the two values: the check that chose between them is gone."""
    if len(node.children) == 3:
        for value in node.children[1:]:
            yield fault(node, "check gone", f"({value.text})")


def _operator(node: Node) -> Iterator[Fault]:
    if len(node.children) != 2:
        return
    left, right = node.children
    start, end, word = between(left, right)
    if word in _PARTS:
        yield fault(node, "part of a condition left out", left.text)
        yield fault(node, "part of a condition left out", right.text)
    elif word in _MOVED:
        yield fault(node, "bound moved", _MOVED[word], start, end)
    elif word in _OTHER:
        yield fault(node, "operator changed", _OTHER[word], start, end)


def _unary(node: Node) -> Iterator[Fault]:
    in_loop_head = node.parent is not None and node.parent.kind == CursorKind.FOR_STMT
    if node.text.endswith("++") and not in_loop_head:
        yield fault(node, "operator changed", node.text[:-2])
    elif node.text.startswith(("!", "~", "-")) and not node.text.startswith("--"):
        yield fault(node, "operator left out", node.text[1:])
