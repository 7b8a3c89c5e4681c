"""The types of the host language, and what its classes offer: the plugin's own by their declarations, the host's few
that the examples use."""

from __future__ import annotations

import re
from dataclasses import dataclass
from pathlib import Path

from declarations import TABLES, keys, rows

_NUMBERS = {"integer", "uint32", "int64", "double"}
VALUE_TYPES = _NUMBERS | {"string", "boolean", "variant"}


@dataclass(frozen=True)
class Type:
    name: str
    is_array: bool = False

    def __str__(self) -> str:
        return self.name + ("()" if self.is_array else "")

    def is_number(self) -> bool:
        return self.name in _NUMBERS and not self.is_array

    def element(self) -> Type:
        return Type(self.name)

    def takes(self, value: Type) -> bool:
        """Whether a value of that type may be given where this one is wanted."""
        if value == self or (self.is_number() and value.is_number()):
            return True
        if self == VARIANT or value == VARIANT:
            return True
        if value == NIL:
            return self.is_array or self.name not in VALUE_TYPES
        return False


VARIANT, NIL, STRING, BOOLEAN, INTEGER = (Type(name) for name in ("variant", "nil", "string", "boolean", "integer"))


def type_of(text: str) -> Type:
    """A type as it is written, "string()" for one."""
    return Type(text.strip().lower().removesuffix("()"), text.strip().endswith("()"))


@dataclass(frozen=True)
class Member:
    parameters: tuple[Type, ...] = ()
    required: int = 0
    result: Type | None = None
    is_shared: bool = False
    can_be_set: bool = False


def parameters_of(text: str) -> tuple[tuple[Type, ...], int]:
    """The types in a list of parameters, and how many of them must be given."""
    types, required = [], 0
    for part in filter(None, (part.strip() for part in text.split(","))):
        match = re.fullmatch(r"(\w+)(\(\))? as (\w+)( = -?\w+)?", part, re.IGNORECASE)
        if not match:
            raise ValueError(f"not a parameter: {part}")
        types.append(Type(match[3].lower(), bool(match[2])))
        required += not match[4]
    return tuple(types), required


_DECLARATION = re.compile(r"(\w+)\s*(?:\((.*?)\))?\s*(?: as (\w+(?:\(\))?))?", re.IGNORECASE)


def member_of(declaration: str, *, is_shared: bool = False, can_be_set: bool = False) -> tuple[str, Member]:
    match = _DECLARATION.fullmatch(declaration)
    if not match:
        raise ValueError(f"not a declaration: {declaration}")
    parameters, required = parameters_of(match[2] or "")
    result = type_of(match[3]) if match[3] else None
    return match[1].lower(), Member(parameters, required, result, is_shared, can_be_set)


# Of the host itself: its classes and its functions.
_HOST = {
    "date": ["Year as Integer", "Month as Integer", "Day as Integer"],
    "dictionary": ["Count as Integer", "HasKey(key as Variant) as Boolean", "Value(key as Variant) as Variant"],
    "folderitem": ["Child(name as String) as FolderItem", "Delete"],
    "specialfolder": ["Documents as FolderItem", "Pictures as FolderItem"],
    "variant": ["StringValue as String"],
    "nilobjectexception": ["Message as String"],
    "outofboundsexception": ["Message as String"],
    "runtimeexception": ["Message as String"],
    "": ["Str(value as Double) as String", "ReplaceAll(text as String, old as String, new as String) as String",
         "Right(text as String, count as Integer) as String", "Quit"],
}


class Classes:
    """Every class by its name in lower case; "" is what is global. A member can have several forms (constructors)."""

    def __init__(self, tree: Path) -> None:
        self.members: dict[str, dict[str, list[Member]]] = {name: {} for name in _HOST}
        self.events: dict[str, set[str]] = {}
        for name, declarations in _HOST.items():
            for text in declarations:
                self._add(name, *member_of(text, is_shared=name == "specialfolder"))
        for name in TABLES:
            self.members.setdefault(name.lower(), {})
            for kind, text in rows(tree, name):
                self._add_row(name.lower(), kind, text)
        for key in keys(tree):
            self._add("mditemqtx", *member_of(f"{key} as string", is_shared=True))

    def _add(self, class_name: str, name: str, member: Member) -> None:
        self.members[class_name].setdefault(name, []).append(member)

    def _add_row(self, class_name: str, kind: str, text: str) -> None:
        if kind == "Event":
            self.events.setdefault(class_name, set()).add(" ".join(text.lower().split()))
        elif kind == "Constant":
            name, value = text.split("=", 1)
            result = STRING if value.startswith('"') else INTEGER
            self._add(class_name, name.lower(), Member(result=result, is_shared=True))
        elif not text.startswith("kMDItem"):
            can_be_set = kind in ("Stored", "Accessors")
            self._add(class_name, *member_of(text, is_shared=kind == "SharedMethod", can_be_set=can_be_set))

    def inherit(self, class_name: str, base: str) -> None:
        self.members[class_name] = self.members[base]
        self.events[class_name] = self.events.get(base, set())
