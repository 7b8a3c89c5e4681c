"""The list of faults that no host could ever notice, each with the reason.

An entry is a paragraph: the file, the lines that go ("- "), the lines that come ("+ "), and behind these, indented, why
it makes no difference that anyone could see. In place of the lines "once FUNCTION" names a function that runs once in a
life of the library, where to remember something is to ask for it; such faults are not made there. Lines that begin with
# are for the reader.
"""

from __future__ import annotations

from dataclasses import dataclass, field
from pathlib import Path

from faults import ChangedLines, Fault

_REMEMBERED = {"result remembered", "value remembered"}


@dataclass
class Listed:
    """The reasons, by what the faults change, and by file and name of a function that runs once."""

    faults: dict[ChangedLines, str] = field(default_factory=dict)
    once: dict[tuple[str, str], str] = field(default_factory=dict)

    def remembers_once(self, fault: Fault) -> bool:
        """Whether the fault remembers something in one of these functions."""
        return fault.kind in _REMEMBERED and (fault.file, fault.function_name) in self.once


def read_list(path: Path) -> Listed:
    """The list as it stands in the file."""
    found = Listed()
    for paragraph in path.read_text("utf-8").split("\n\n"):
        lines = [line for line in paragraph.splitlines() if line and not line.startswith("#")]
        if not lines:
            continue
        file = lines[0].strip()
        gone = tuple(line[2:].strip() for line in lines if line.startswith("- "))
        come = tuple(line[2:].strip() for line in lines if line.startswith("+ "))
        once = [line.removeprefix("once ").strip() for line in lines if line.startswith("once ")]
        reason = " ".join(line.strip() for line in lines[1:] if line.startswith(" "))
        entry = ChangedLines(file, gone, come)
        functions = [(file, name) for name in once]
        is_known = entry in found.faults or any(function in found.once for function in functions)
        if not reason or is_known or bool(gone or come) == bool(once):
            raise SystemExit(f"mutate: {path.name}: no reason, no change, or twice the same:\n{paragraph}")
        if once:
            found.once.update({function: reason for function in functions})
        else:
            found.faults[entry] = reason
    return found
