"""The program as people run it: started, watched and stopped from outside."""

from __future__ import annotations

import os
import re
import select
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from outside import Terminal

PROGRAM = os.environ["PROGRAM"]
PLUGIN = os.environ["PLUGIN"]

# Far more than anything here takes; what is waited for is an event, not a time.
_PATIENCE = 60

_REWOUND = re.compile(r"[^\n]*\r\x1b\[K")
_STYLE = re.compile(r"\x1b\[[0-9;]*m")

# 2009-02-15 12:30:00 GMT
MOMENT = 1234701000


def run(
    *arguments: str, cwd: str | Path = "/", stdout: int = subprocess.PIPE, privileged: bool = True
) -> subprocess.CompletedProcess[str]:
    """Runs the program to its end, without a terminal. Without privileges not even root reads what is closed to it."""
    before = [] if privileged or os.getuid() != 0 else ["setpriv", "--bounding-set=-all", "--inh-caps=-all"]
    return subprocess.run(
        [*before, PROGRAM, "--plugin", PLUGIN, *arguments],
        cwd=cwd,
        stdin=subprocess.DEVNULL,
        stdout=stdout,
        stderr=subprocess.PIPE,
        text=True,
        check=False,
        timeout=_PATIENCE,
    )


def unstyled(text: str) -> str:
    """The text as it looks in the end, without colours and without what was written over."""
    return _STYLE.sub("", _REWOUND.sub("", text))


class Running:
    """The program at work, with what it has said so far."""

    def __init__(self, *arguments: str, terminal_width: int = 0, environment: dict[str, str] | None = None) -> None:
        command = [PROGRAM, "--plugin", PLUGIN, *arguments]
        variables = {**os.environ, "TERM": "xterm", **(environment or {})}
        self._terminal = Terminal(command, variables, "/", terminal_width) if terminal_width else None
        if self._terminal:
            self._process, self._descriptor = self._terminal.process, self._terminal.descriptor
        else:
            self._descriptor, far_end = os.pipe()
            self._process = os.posix_spawn(
                command[0],
                command,
                variables,
                file_actions=[
                    (os.POSIX_SPAWN_OPEN, 0, os.devnull, os.O_RDONLY, 0),
                    (os.POSIX_SPAWN_DUP2, far_end, 1),
                    (os.POSIX_SPAWN_DUP2, far_end, 2),
                ],
            )
            os.close(far_end)
        self.output = ""
        self._bytes = b""

    def __enter__(self) -> Running:
        return self

    def __exit__(self, *_: object) -> None:
        if self._process:
            os.kill(self._process, signal.SIGKILL)
            self._wait()

    def wait_for(self, text: str) -> None:
        """Returns when the program has printed the text."""
        deadline = time.monotonic() + _PATIENCE
        while text not in self.output:
            if not self._read(deadline):
                raise AssertionError(f"it ended without saying {text!r}; it said:\n{self.output}")

    def signal(self, number: int) -> None:
        """Sends the program a signal."""
        os.kill(self._process, number)

    def type(self, text: str) -> None:
        """Types on the program's terminal."""
        os.write(self._descriptor, text.encode())

    def end(self) -> int:
        """Waits for the end and returns the exit code, or minus the number of the signal that it was."""
        deadline = time.monotonic() + _PATIENCE
        while self._read(deadline):
            pass
        return self._wait()

    def _wait(self) -> int:
        process, self._process = self._process, 0
        if self._terminal:
            return self._terminal.wait()
        _, status = os.waitpid(process, 0)
        os.close(self._descriptor)
        return os.waitstatus_to_exitcode(status)

    def _read(self, deadline: float) -> bool:
        ready, _, _ = select.select([self._descriptor], [], [], max(0, deadline - time.monotonic()))
        if not ready:
            raise AssertionError(f"nothing more came; it said:\n{self.output}")
        more = self._terminal.read() if self._terminal else os.read(self._descriptor, 65536)
        self._bytes += more
        self.output = self._bytes.decode(errors="replace").replace("\r\n", "\n")
        return bool(more)


class FolderTest(unittest.TestCase):
    """A test with a folder of its own."""

    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name).resolve() / "folder"
        self.folder.mkdir()

    def make(self, name: str, contents: str = "") -> Path:
        """A file of the folder, last changed at MOMENT."""
        path = self.folder / name
        path.write_text(contents, "utf-8")
        os.utime(path, (MOMENT, MOMENT))
        return path
