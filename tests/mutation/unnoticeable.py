"""The list of faults that no host could ever notice, each with the reason.

An entry is a paragraph: the file, the lines that go ("- "), the lines that come ("+ "), and behind these, indented, why
it makes no difference that anyone could see. Lines that begin with # are for the reader.
"""

from __future__ import annotations

from pathlib import Path

from faults import ChangedLines


def read_list(path: Path) -> dict[ChangedLines, str]:
    """The reasons, by what the faults change."""
    found: dict[ChangedLines, str] = {}
    for paragraph in path.read_text("utf-8").split("\n\n"):
        lines = [line for line in paragraph.splitlines() if line and not line.startswith("#")]
        if not lines:
            continue
        gone = tuple(line[2:].strip() for line in lines if line.startswith("- "))
        come = tuple(line[2:].strip() for line in lines if line.startswith("+ "))
        reason = " ".join(line.strip() for line in lines[1:] if line.startswith(" "))
        entry = ChangedLines(lines[0].strip(), gone, come)
        if not reason or not (gone or come) or entry in found:
            raise SystemExit(f"mutate: {path.name}: no reason, no change, or twice the same:\n{entry}")
        found[entry] = reason
    return found
