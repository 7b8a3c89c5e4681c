"""The code in the host language on the pages, as programs.

A fenced block of code is a program by itself. One whose fence says "basic as NAME" prepares what others start from: they
say "basic after NAME", and stand behind its lines. One that says "basic until stopped" goes on until somebody ends it.
What a program prints follows in an "output" block.
"""

from __future__ import annotations

from dataclasses import dataclass

from pages import Block, blocks


@dataclass
class Snippet:
    block: Block
    prepared: list[str]
    output: list[str] | None
    is_stopped: bool = False

    def lines(self) -> list[str]:
        """The whole program."""
        return [*self.prepared, *self.block.lines]


def snippets(text: str) -> list[Snippet]:
    """The programs of one page. A name that was not prepared raises KeyError."""
    prepared: dict[str, list[str]] = {}
    found: list[Snippet] = []
    for block in blocks(text):
        kind, _, rest = block.kind.partition(" ")
        if kind == "output" and found and found[-1].output is None:
            found[-1].output = block.lines
        elif kind == "basic":
            role, _, name = rest.partition(" ")
            if role not in ("", "as", "after") and rest != "until stopped":
                raise ValueError(f"line {block.first_line}: a fence cannot say {block.kind}")
            found.append(Snippet(block, prepared[name] if role == "after" else [], None, role == "until"))
            if role == "as":
                prepared[name] = block.lines
    return found
