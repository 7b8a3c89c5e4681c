"""The table of ./dev's commands, dev.commands, as the tests read it."""

from __future__ import annotations

import re
import shlex
from dataclasses import dataclass, field
from pathlib import Path

_HEAD = re.compile(r"\[([a-z-]+)\]\s*(.*)")


@dataclass
class Command:
    """One paragraph of the table. A trial is the words behind the command's name."""

    name: str
    takes: str
    does: list[str] = field(default_factory=list)
    right: list[list[str]] = field(default_factory=list)
    long: list[list[str]] = field(default_factory=list)
    wrong: list[list[str]] = field(default_factory=list)


def read(tree: Path, sdk: Path) -> list[Command]:
    """The commands in their order; {tree} and {sdk} in trials are filled in. Raises ValueError where a line is not understood."""
    commands: list[Command] = []
    for line in (tree / "dev.commands").read_text("utf-8").splitlines():
        if not line.strip() or line.startswith("#"):
            continue
        head = _HEAD.fullmatch(line)
        word, _, rest = line.partition(" ")
        if head:
            commands.append(Command(head[1], head[2]))
        elif word == "does" and commands:
            commands[-1].does.append(rest.strip())
        elif word in ("right", "long", "wrong") and commands:
            words = [part.format(tree=tree, sdk=sdk) for part in shlex.split(rest)]
            getattr(commands[-1], word).append(words)
        else:
            raise ValueError(f"dev.commands: {line}")
    return commands


def wrong_trials(command: Command) -> list[list[str]]:
    """What the command must refuse: its own mistakes, and those that can be made with each."""
    general = [["--no-such-option"]]
    if not command.takes:
        general.append(["word"])
    return command.wrong + general
