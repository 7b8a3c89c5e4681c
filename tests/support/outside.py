"""Commands run from outside, as people and other programs run them: from any folder, in a terminal and without one."""

from __future__ import annotations

import os
import pty
import subprocess
from dataclasses import dataclass
from pathlib import Path

# All of the environment that a command gets.
ENVIRONMENT = {"PATH": "/usr/bin:/bin", "TERM": "xterm"}


@dataclass
class Ran:
    """How a command ended and what it said. In a terminal there is one stream only, `output`."""

    code: int
    output: str
    errors: str


def run(command: list[str], folder: Path | str = "/", in_terminal: bool = False) -> Ran:
    """Runs the command to its end. In a terminal nobody types anything."""
    if in_terminal:
        return _run_in_terminal(command, folder)
    ran = subprocess.run(
        command, cwd=folder, env=ENVIRONMENT, stdin=subprocess.DEVNULL, capture_output=True, check=False
    )
    return Ran(ran.returncode, ran.stdout.decode(errors="replace"), ran.stderr.decode(errors="replace"))


def _run_in_terminal(command: list[str], folder: Path | str) -> Ran:
    process, descriptor = pty.fork()
    if process == 0:
        os.chdir(folder)
        os.execve(command[0], command, ENVIRONMENT)
    said = b""
    while True:
        try:
            more = os.read(descriptor, 65536)
        except OSError:  # how a terminal says that nobody is at its other end
            break
        if not more:
            break
        said += more
    os.close(descriptor)
    _, status = os.waitpid(process, 0)
    return Ran(os.waitstatus_to_exitcode(status), said.decode(errors="replace").replace("\r\n", "\n"), "")
