"""Reading the pages under docs: fenced blocks, rows of tables, headings and links."""

from __future__ import annotations

import re
from dataclasses import dataclass

_LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")


@dataclass
class Block:
    kind: str
    first_line: int
    lines: list[str]


def blocks(text: str) -> list[Block]:
    """The fenced blocks of a page, each with what its fence says it is."""
    found: list[Block] = []
    is_open = False
    for number, line in enumerate(text.splitlines(), 1):
        if line.startswith("```"):
            if not is_open:
                found.append(Block(line[3:].strip(), number + 1, []))
            is_open = not is_open
        elif is_open:
            found[-1].lines.append(line)
    return found


def _prose(text: str) -> list[str]:
    kept, is_open = [], False
    for line in text.splitlines():
        if line.startswith("```"):
            is_open = not is_open
        elif not is_open:
            kept.append(line)
    return kept


def table_rows(text: str) -> list[list[str]]:
    """The cells of every row of every table, head rows and rulers left out."""
    found: list[list[str]] = []
    lines = _prose(text) + [""]
    for line, following in zip(lines, lines[1:]):
        if not line.startswith("|") or set(line) <= set("|- :") or following.startswith("|---"):
            continue
        found.append([cell.strip() for cell in re.split(r"(?<!\\)\|", line)[1:-1]])
    return found


def section(text: str, title: str) -> str:
    """What stands under a heading of the second level, up to the next one."""
    return text.split(f"\n## {title}\n", 1)[1].split("\n## ", 1)[0]


def anchors(text: str) -> set[str]:
    """The places of a page that links can name."""
    titles = [line.lstrip("#").strip() for line in _prose(text) if line.startswith("#")]
    return {re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-") for title in titles}


def links(text: str) -> list[str]:
    return _LINK.findall("\n".join(_prose(text)))
