"""Faults in what is done and in what order: a statement left out, two neighbours swapped, a null check gone."""

from __future__ import annotations

from collections.abc import Iterator

from clang.cindex import CursorKind

from faults import Fault
from making import STATEMENT_BLOCKS, fault, mentions, statement_end
from syntax import FUNCTIONS, Node, Source

_LOOPS = {CursorKind.FOR_STMT, CursorKind.WHILE_STMT, CursorKind.CXX_FOR_RANGE_STMT}
_JUMPS = {CursorKind.RETURN_STMT, CursorKind.CONTINUE_STMT, CursorKind.BREAK_STMT}
_STAYS = {CursorKind.SWITCH_STMT, CursorKind.CXX_TRY_STMT, CursorKind.COMPOUND_STMT, CursorKind.NULL_STMT}


# What decides how long something lives.
_LIFETIMES = ("CFRelease", "CFRetain", "REALUnlockObject", "REALLockObject", "Release", "Hold", "Give", "free")


def statement_faults(source: Source) -> Iterator[Fault]:
    """All faults of this family."""
    for node in source.walk():
        statements = _statements_of(node)
        for statement in statements:
            yield from _left_out(statement, statement is statements[-1])
        for first, second in zip(statements, statements[1:]):
            yield from _swapped(first, second)
        if node.kind == CursorKind.IF_STMT:
            yield from _check_gone(node)


def _statements_of(node: Node) -> list[Node]:
    """What stands in a block, in a case, or alone behind a condition."""
    if node.kind == CursorKind.COMPOUND_STMT:
        return node.children
    if node.kind in STATEMENT_BLOCKS or node.kind in _LOOPS:
        return node.children[-1:]
    return []


def _is_declaration(node: Node) -> bool:
    return node.kind == CursorKind.DECL_STMT


def _is_lasting(node: Node) -> bool:
    """A declaration that does nothing where it stands."""
    return _is_declaration(node) and node.text.startswith(("static constexpr", "static constinit"))


def _declared(node: Node) -> list[str]:
    return [child.cursor.spelling for child in node.children] if _is_declaration(node) else []


def _left_out(statement: Node, last: bool) -> Iterator[Fault]:
    if statement.kind in _STAYS or statement.kind in STATEMENT_BLOCKS:
        return
    # What a function gives back cannot be left out at its end.
    if statement.kind == CursorKind.RETURN_STMT and last and statement.parent.parent.kind in FUNCTIONS:
        return
    if statement.kind == CursorKind.IF_STMT and len(_branches(statement)) > 1:
        return
    if _is_declaration(statement):
        function = statement.function
        if not function or any(len(_uses(function, name)) > 1 for name in _declared(statement)):
            return
    kind = "check left out" if statement.kind == CursorKind.IF_STMT else "statement left out"
    yield fault(statement, kind, ";", end=statement_end(statement))


def _uses(function: Node, name: str) -> list[str]:
    return [word for word in _words(function.text) if word == name]


def _words(text: str) -> list[str]:
    return "".join(character if character.isalnum() or character == "_" else " " for character in text).split()


def _swapped(first: Node, second: Node) -> Iterator[Fault]:
    for node in (first, second):
        if node.kind in _JUMPS or node.kind in STATEMENT_BLOCKS or _is_lasting(node):
            return
    if not _order_matters(first, second):
        return
    if any(mentions(second, name) for name in _declared(first)):
        return
    if any(mentions(first, name) for name in _declared(second)):
        return
    source = first.source.bytes
    end_of_first, end = statement_end(first), statement_end(second)
    gap = source[end_of_first : second.start].decode()
    text = source[second.start : end].decode() + gap + source[first.start : end_of_first].decode()
    yield fault(first, "neighbours swapped", text, end=end)


def _order_matters(first: Node, second: Node) -> bool:
    """Both call something, or one of them gives a reference up or adds one. That two variables are written in the other
    order is no fault."""
    calls = [any(node.kind == CursorKind.CALL_EXPR for node in one.walk()) for one in (first, second)]
    return all(calls) or any(mentions(one, name) for one in (first, second) for name in _LIFETIMES)


def _branches(node: Node) -> list[Node]:
    """The statements behind an if's condition: one, or two with an else."""
    statements = [child for child in node.children if child.kind.is_statement()]
    return statements or node.children[-1:]


def _condition(node: Node) -> Node | None:
    """The condition, unless it declares something."""
    first = node.children[0] if node.children else None
    return first if first and first.kind.is_expression() else None


def _check_gone(node: Node) -> Iterator[Fault]:
    """What hangs on a condition is done in any case. Where it leaves the function, that is tested well enough by the
    condition turned round."""
    condition = _condition(node)
    body = node.children[-1]
    if body.kind == CursorKind.COMPOUND_STMT and body.children:
        body = body.children[-1]
    if condition and body.kind not in _JUMPS and "else" not in _words(node.text):
        yield fault(condition, "check gone", "true")
