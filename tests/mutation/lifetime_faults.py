"""Faults in how long something lives: a reference given up or added once too often or too rarely, a result or a
variable remembered that must be asked anew."""

from __future__ import annotations

from collections.abc import Iterator

from clang.cindex import CursorKind, TypeKind

from faults import Fault
from making import fault
from syntax import Node, Source

# The call that stands for another, and what it wraps its argument in.
_OTHER_OWNERSHIP = {
    "AdoptCF": "[&](auto given) { if (given) CFRetain(given); return AdoptCF(given); }",
    "AdoptHost": "[&](auto *given) { static_cast<void>(Hold(given).Give()); return AdoptHost(given); }",
    "HoldCF": "AdoptCF",
    "Hold": "AdoptHost",
}
_SCALARS = {
    TypeKind.POINTER,
    TypeKind.BOOL,
    TypeKind.DOUBLE,
    TypeKind.FLOAT,
    TypeKind.ENUM,
    TypeKind.INT,
    TypeKind.UINT,
    TypeKind.LONG,
    TypeKind.ULONG,
    TypeKind.LONGLONG,
    TypeKind.ULONGLONG,
    TypeKind.UCHAR,
    TypeKind.SCHAR,
    TypeKind.USHORT,
    TypeKind.SHORT,
    # Of a template; what is no scalar in some instance does not compile.
    TypeKind.DEPENDENT,
}
# A holder's words, and casts to a reference, have nothing that could be asked anew.
_NOT_ASKED = {"Get", "Give", "move", "begin", "end", "size", "strlen", "data"}


def lifetime_faults(source: Source) -> Iterator[Fault]:
    """All faults of this family."""
    for node in source.walk():
        if node.kind == CursorKind.CALL_EXPR:
            yield from _owned_otherwise(node)
            yield from _remembered_result(node)
        elif node.kind in {CursorKind.MEMBER_REF_EXPR, CursorKind.DECL_REF_EXPR}:
            yield from _remembered_variable(node)


def _owned_otherwise(call: Node) -> Iterator[Fault]:
    name = call.text.split("(", 1)[0].split("<", 1)[0]
    if name in _OTHER_OWNERSHIP and "(" in call.text and not call.source.file.endswith("host/owned.h"):
        arguments = call.text[call.text.index("(") :]
        kind = "one reference too many" if name.startswith("Adopt") else "reference not added"
        yield fault(call, kind, f"{_OTHER_OWNERSHIP[name]}{arguments}")
    if call.text.endswith(".Give()"):
        yield fault(call, "given up though handed on", call.text.removesuffix("Give()") + "Get()")


def _remembered_result(call: Node) -> Iterator[Fault]:
    name = call.cursor.spelling
    if not call.function or not name or name in _NOT_ASKED or not call.text.endswith(")"):
        return
    if call.text.startswith("CFSTR(") or call.text.endswith("GetTypeID()"):
        return  # Constants.
    result = call.cursor.type.get_canonical()
    if result.kind not in _SCALARS:
        return
    if _is_reference(call):
        yield fault(call, "result remembered", f"[&]() -> auto & {{ static auto &known = {call.text}; return known; }}()")
    else:
        yield fault(call, "result remembered", f"[&] {{ static auto known = {call.text}; return known; }}()")


def _is_reference(call: Node) -> bool:
    named = call.cursor.referenced
    return named is not None and named.result_type.get_canonical().kind == TypeKind.LVALUEREFERENCE


def _remembered_variable(node: Node) -> Iterator[Fault]:
    """What start-up, the host or another call may have written since. An assignment to it does not compile then."""
    named = node.cursor.referenced
    if not node.function or named is None or named.type.get_canonical().kind not in _SCALARS:
        return
    if named.type.get_canonical().is_const_qualified() or (node.parent and _is_called(node)):
        return
    is_global = named.kind == CursorKind.VAR_DECL and named.semantic_parent.kind in {
        CursorKind.TRANSLATION_UNIT,
        CursorKind.NAMESPACE,
    }
    if named.kind == CursorKind.FIELD_DECL or is_global:
        yield fault(node, "value remembered", f"[&] {{ static auto known = {node.text}; return known; }}()")


def _is_called(node: Node) -> bool:
    return node.source.bytes[node.end : node.end + 1] == b"("
