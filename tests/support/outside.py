"""Commands run from outside, as people and other programs run them: from any folder, in a terminal and without one."""

from __future__ import annotations

import fcntl
import os
import pty
import signal
import struct
import subprocess
import termios
from dataclasses import dataclass
from pathlib import Path

# All of the environment that a command gets. A compiler cache changes nothing but how long it takes.
_CACHE = "CMAKE_CXX_COMPILER_LAUNCHER"
ENVIRONMENT = {"PATH": "/usr/bin:/bin", "TERM": "xterm"} | ({_CACHE: os.environ[_CACHE]} if _CACHE in os.environ else {})


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
    terminal = Terminal(command, ENVIRONMENT, folder)
    said = b""
    while more := terminal.read():
        said += more
    return Ran(terminal.wait(), said.decode(errors="replace").replace("\r\n", "\n"), "")


class Terminal:
    """A terminal of its own with a command at work in it.

    When the first process of a terminal ends, the kernel throws away what is still under way from its programs to the
    one who watches. So the command is not that process: it is the child of one that stays until all was read.
    """

    def __init__(self, command: list[str], environment: dict[str, str], folder: Path | str, width: int = 80) -> None:
        told, tell = os.pipe()
        until, release = os.pipe()
        self._first, self.descriptor = pty.fork()
        if self._first == 0:
            os.close(release)
            fcntl.ioctl(1, termios.TIOCSWINSZ, struct.pack("HHHH", 40, width, 0, 0))
            os.chdir(folder)
            _be_first(command, environment, tell, until)
        os.close(tell)
        os.close(until)
        self._told = os.fdopen(told, encoding="ascii")
        self._release = release
        self.process = int(self._told.readline())

    def read(self) -> bytes:
        """What came since; waits until there is something. Nothing when the command has ended."""
        try:
            return os.read(self.descriptor, 65536)
        except OSError:  # how a terminal says that nobody is at its other end
            return b""

    def wait(self) -> int:
        """The exit code, or minus the number of the signal that ended it. To be asked once, after all was read."""
        status = int(self._told.readline())
        self._told.close()
        os.close(self._release)
        os.waitpid(self._first, 0)
        os.close(self.descriptor)
        return os.waitstatus_to_exitcode(status)


def _be_first(command: list[str], environment: dict[str, str], tell: int, until: int) -> None:
    """Starts the command in this process's terminal, tells its number and how it ended, and waits to be let go."""
    process = os.posix_spawn(command[0], command, environment, setsigdef=[signal.SIGINT])
    signal.signal(signal.SIGINT, signal.SIG_IGN)  # what is typed is for the command
    for descriptor in range(3):
        os.close(descriptor)
    os.write(tell, f"{process}\n".encode())
    _, status = os.waitpid(process, 0)
    os.write(tell, f"{status}\n".encode())
    os.read(until, 1)
    os._exit(0)
