"""Faults in what is passed on: a constant changed, a literal emptied, a null word made an empty text, an argument
replaced by another of its type."""

from __future__ import annotations

from collections.abc import Iterator

from clang.cindex import Cursor, CursorKind

from faults import Fault
from making import fault
from syntax import Node, Source

# What a function gives instead of null, by the type of its result.
_EMPTY_RESULTS = {
    "REALstringStruct *": 'REALBuildString("", 0)',
    "__CFString *": 'CFSTR("")',
    "const __CFString *": 'CFSTR("")',
    "Owned<REALstringStruct *, REALUnlockString>": 'AdoptHost(REALBuildString("", 0))',
    "_REALarrayString *": "static_cast<_REALarrayString *>(REALCreateArray(3, -1))",
    "_REALarrayObject *": "static_cast<_REALarrayObject *>(REALCreateArray(4, -1))",
    "REALobjectStruct *": "BooleanToVariant(0)",
    "Owned<REALobjectStruct *, REALUnlockObject>": "AdoptHost(BooleanToVariant(0))",
    "Owned<_REALarrayObject *, REALUnlockObject>": "AdoptHost(static_cast<_REALarrayObject *>(REALCreateArray(4, -1)))",
}
# The order of their arguments makes no difference.
_COMMUTING = {"calloc", "min", "max"}
_VARIABLES = {CursorKind.VAR_DECL, CursorKind.PARM_DECL}


def value_faults(source: Source) -> Iterator[Fault]:
    """All faults of this family."""
    for node in source.walk():
        if node.kind in {CursorKind.INTEGER_LITERAL, CursorKind.FLOATING_LITERAL}:
            yield from _other_number(node)
        elif node.kind == CursorKind.CXX_BOOL_LITERAL_EXPR:
            yield fault(node, "constant changed", "false" if node.text == "true" else "true")
        elif node.kind == CursorKind.STRING_LITERAL:
            yield from _emptied(node)
        elif node.kind == CursorKind.RETURN_STMT:
            yield from _empty_result(node)
        elif node.kind == CursorKind.CALL_EXPR:
            yield from _other_arguments(node)
        elif node.kind == CursorKind.DECL_REF_EXPR:
            yield from _other_constant(node)
        elif node.kind == CursorKind.INIT_LIST_EXPR:
            yield from _rows(node)


def _other_number(node: Node) -> Iterator[Fault]:
    """One more and one less; of what is no whole number, one more."""
    text = node.text.replace("'", "")
    if node.kind == CursorKind.FLOATING_LITERAL:
        yield fault(node, "constant changed", f"({node.text} + 1)")
        return
    digits = text.rstrip("uUlL")
    try:
        number = int(digits, 0)
    except ValueError:
        return  # what a macro gave
    suffix = text[len(digits) :]
    for other in (number + 1, number - 1) if number > 0 else (number + 1,):
        written = f"0x{other:X}" if digits.startswith("0x") else str(other)
        yield fault(node, "constant changed", written + suffix)


def _emptied(node: Node) -> Iterator[Fault]:
    if node.text.startswith('"'):
        yield fault(node, "literal emptied" if node.text != '""' else "literal filled", '""' if node.text != '""' else '"x"')
    elif node.text == 'CFSTR("")':
        yield fault(node, "literal filled", 'CFSTR("x")')
    elif node.text.startswith("CFSTR("):
        yield fault(node, "literal emptied", 'CFSTR("")')


def _result_type(node: Node) -> str:
    return node.function.cursor.result_type.get_canonical().spelling if node.function else ""


def _empty_result(node: Node) -> Iterator[Fault]:
    empty = _EMPTY_RESULTS.get(_result_type(node))
    if not empty:
        return
    for child in node.walk():
        in_call = any(outer.kind == CursorKind.CALL_EXPR and outer.text != child.text for outer in _up_to(child, node))
        if child.kind == CursorKind.CXX_NULL_PTR_LITERAL_EXPR and not in_call:
            yield fault(child, "null made an empty value", empty)
    if node.text == "return {}":
        yield fault(node, "null made an empty value", f"return {empty}")


def _up_to(node: Node, last: Node) -> Iterator[Node]:
    for outer in node.above():
        if outer is last:
            return
        yield outer


def _arguments(call: Node) -> list[Node]:
    """The arguments as they are written; those that a declaration adds are not."""
    written = []
    for cursor in call.cursor.get_arguments():
        for child in call.children:
            if cursor is not None and child.cursor == cursor and child.start < child.end:
                written.append(child)
    return [node for node in written if node.start >= call.start and node.text]


def _other_arguments(call: Node) -> Iterator[Fault]:
    arguments = _arguments(call)
    drops_in_turn = call.cursor.spelling == "Release"
    for left, right in zip(arguments, arguments[1:]):
        if call.cursor.spelling in _COMMUTING:
            continue
        if (left.type == right.type or drops_in_turn) and left.text != right.text and left.end <= right.start:
            gap = call.source.bytes[left.end : right.start].decode()
            yield fault(left, "arguments swapped", right.text + gap + left.text, end=right.end)
    for argument in arguments:
        core = argument.core()
        if core.kind == CursorKind.DECL_REF_EXPR and call.function:
            for name in _others(core, call.function):
                yield fault(core, "another argument", name)
        if core.kind == CursorKind.CXX_NULL_PTR_LITERAL_EXPR and argument.type == "const char *":
            yield fault(core, "null made an empty value", '""')


def _others(reference: Node, function: Node) -> list[str]:
    """The parameters and variables of a function that have the type of the one that is named, and stand before it."""
    named = reference.cursor.referenced
    if named is None or named.kind not in _VARIABLES:
        return []
    outermost = function
    for outer in function.above():
        if outer.function is None and outer.cursor.kind.is_declaration() and function.function:
            outermost = outer
    return [
        variable.spelling
        for variable in _variables(outermost.cursor)
        if variable.type.get_canonical().spelling.removeprefix("const ").removesuffix(" const")
        == named.type.get_canonical().spelling.removeprefix("const ").removesuffix(" const")
        and variable.spelling not in {"", named.spelling}
        and variable.extent.end.offset <= reference.start
    ]


def _variables(cursor: Cursor) -> Iterator[Cursor]:
    for child in cursor.get_children():
        if child.kind in _VARIABLES:
            yield child
        yield from _variables(child)


def _other_constant(node: Node) -> Iterator[Fault]:
    """The next constant of an enumeration; another of the framework's constants that the file names."""
    named = node.cursor.referenced
    if named is None or node.text != node.cursor.spelling:
        return
    if named.kind == CursorKind.ENUM_CONSTANT_DECL and named.semantic_parent is not None:
        siblings = [one.spelling for one in named.semantic_parent.get_children() if one.enum_value != named.enum_value]
        later = [one.spelling for one in named.semantic_parent.get_children() if one.enum_value > named.enum_value]
        for name in (later or siblings)[:1]:
            yield fault(node, "constant changed", name)
    elif _is_system_constant(named):
        for name in _other_system_constants(node, named)[:1]:
            yield fault(node, "constant changed", name)


def _is_system_constant(named: Cursor) -> bool:
    return named.kind == CursorKind.VAR_DECL and named.spelling.startswith("k") and named.type.is_const_qualified()


def _other_system_constants(node: Node, named: Cursor) -> list[str]:
    found: dict[str, None] = {}
    for other in node.source.walk():
        if other.kind == CursorKind.DECL_REF_EXPR and other.cursor.referenced is not None:
            constant = other.cursor.referenced
            if _is_system_constant(constant) and constant.spelling != named.spelling:
                if constant.type.get_canonical().spelling == named.type.get_canonical().spelling:
                    found[constant.spelling] = None
    return list(found)


def _rows(node: Node) -> Iterator[Fault]:
    """A row of a table left out."""
    rows = [child for child in node.children if child.kind.is_expression() and child.text]
    if len(rows) < 3 or any(row.type != rows[0].type or row.start < node.start for row in rows):
        return
    for first, second in zip(rows, rows[1:]):
        if first.end <= second.start and "#" not in node.source.bytes[first.end : second.start].decode():
            yield fault(first, "row left out", "", end=second.start)
