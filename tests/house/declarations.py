"""What the plugin declares to the host, read off the sources of its tables.

Every declaration is given as the host sees it: methods, events and constants in the text of their record, a property as
"name as type".
"""

from __future__ import annotations

import re
from pathlib import Path

# Each class, or "" for what is global, and the source of its tables.
TABLES: dict[str, str] = {
    "MDQueryQTX": "spotlight/query.cpp",
    "MDItemQTX": "spotlight/item.cpp",
    "MDQueryBatchingParamsQTX": "spotlight/batching_params.cpp",
    "": "plugin/global_method.cpp",
}
KEYS = "spotlight/attribute_keys.def"

_ROW = re.compile(
    r'\b(Method|SharedMethod|Accessors|Event|Constant)\("((?:[^"\\]|\\.)*)"|\b(Stored|Computed)\("(\w+)", "(\w+)"'
)
_KEY = re.compile(r"^ATTRIBUTE_KEY\((\w+)\)$", re.MULTILINE)


def rows(tree: Path, class_name: str) -> list[tuple[str, str]]:
    """The rows of a class's tables as (kind of row, declaration), without those that the list of keys makes."""
    text = (tree / TABLES[class_name]).read_text("utf-8")
    found = []
    for method, declaration, field, name, type_name in _ROW.findall(text):
        if method:
            found.append((method, declaration.replace('\\"', '"')))
        else:
            found.append((field, f"{name} as {type_name}"))
    return found


def keys(tree: Path) -> list[str]:
    """The attribute keys, each of which is declared as its name followed by "as string"."""
    listed = _KEY.findall((tree / KEYS).read_text("utf-8"))
    literal = [text.split()[0] for _, text in rows(tree, "MDItemQTX") if text.startswith("kMDItem")]
    return listed + literal


def declared(tree: Path, class_name: str) -> list[str]:
    """The declarations of a class, without the attribute keys."""
    return [text for _, text in rows(tree, class_name) if not text.startswith("kMDItem")]
