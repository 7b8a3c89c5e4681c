"""Reads callgrind's files: how many instructions a counted call took, whose they were, and which calls were made."""

from __future__ import annotations

import re
from collections import Counter
from dataclasses import dataclass, field
from pathlib import Path

_NAMED = re.compile(r"^(c?)(ob|fn)=\((\d+)\)(?: (.*))?$")
_HARNESS = re.compile(r"Measure::|CountedLoop|_Function_handler|_M_invoke")


@dataclass
class Count:
    """One file: the counts between two marks."""

    label: str = ""
    """What is called from the harness, callees included. What the harness does with a result is not in it."""
    whole: int = 0
    """Of the code that is compared: the plugin, for which no file was mapped, or the floors. Without callees."""
    own: int = 0
    """Calls from that code of any other, by the name of the function."""
    calls: Counter = field(default_factory=Counter)


def _is_compared(object_name: str, function: str) -> bool:
    return object_name == "???" or function.startswith("bench::floors::")


def read(path: Path) -> Count:
    count = Count()
    names: dict[tuple[str, str], str] = {}
    place = {"ob": "", "fn": "", "cob": "", "cfn": ""}
    calls: int | None = None  # of the line before, when that said how often another function was called
    for line in path.read_text("utf-8", "replace").splitlines():
        if match := _NAMED.match(line):
            called, kind, number, name = match.groups()
            if name is not None:
                names[kind, number] = name
            place[called + kind] = names[kind, number]
            if not called:
                place["cob"] = ""
                if kind == "fn":
                    place["cfn"] = ""
        elif line.startswith("desc: Trigger: Client Request: "):
            count.label = line.split(": ", 3)[3]
        elif line.startswith("calls="):
            calls = int(line[len("calls="):].split()[0])
        elif line and line[0] in "0123456789+-*":
            _add(count, place, calls, int(line.split()[-1]))
            if calls is not None:
                place["cob"] = ""
            calls = None
    return count


def _add(count: Count, place: dict[str, str], calls: int | None, cost: int) -> None:
    compared = _is_compared(place["ob"], place["fn"])
    if calls is None:
        count.own += cost if compared else 0
    elif _HARNESS.search(place["fn"]):
        if not _HARNESS.search(place["cfn"]) and not place["cfn"].startswith("bench::Unlock"):
            count.whole += cost
    elif compared and not _is_compared(place["cob"] or place["ob"], place["cfn"]):
        count.calls[place["cfn"]] += calls
