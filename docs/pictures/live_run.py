"""The picture of a live run on the front page, made from one: live_run.py PROGRAM LIBRARY prints it as SVG.

The program runs in a terminal, over the example folder, in which files then come, change their names and go. What the
terminal shows at the end is the picture; only the path of the temporary home folder has become "~".
"""

from __future__ import annotations

import fcntl
import os
import pty
import re
import select
import struct
import sys
import tempfile
import termios
import time
from html import escape
from itertools import groupby
from pathlib import Path

import pyte
from pyte.screens import Char

_TREE = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(_TREE / "tests/house"))

import example_folder  # noqa: E402

_QUERY = "kMDItemContentTypeTree == 'public.image'"
_ROWS, _COLUMNS = 60, 92
_PATIENCE = 60
_WIDTH, _HEIGHT, _MARGIN = 8, 19, 16
_COLOURS = {"green": "green", "brown": "yellow", "red": "red", "cyan": "cyan", "blue": "blue", "magenta": "magenta"}
_STYLE = """
text { font: 13px ui-monospace, SFMono-Regular, Menlo, Consolas, "DejaVu Sans Mono", monospace; white-space: pre; }
text { fill: #24292f; } .ground { fill: #f6f8fa; stroke: #d0d7de; }
.bold { font-weight: bold; } .green { fill: #116329; } .yellow { fill: #7d4e00; } .red { fill: #cf222e; }
.cyan { fill: #1b6b7f; } .blue { fill: #0550ae; } .magenta { fill: #8250df; }
@media (prefers-color-scheme: dark) {
  text { fill: #e6edf3; } .ground { fill: #0d1117; stroke: #30363d; }
  .green { fill: #3fb950; } .yellow { fill: #d29922; } .red { fill: #ff7b72; }
  .cyan { fill: #39c5cf; } .blue { fill: #79c0ff; } .magenta { fill: #bc8cff; }
}
"""


class _Terminal:
    """A program in a terminal of its own, and what that shows."""

    def __init__(self, command: list[str], home: Path) -> None:
        self._home = str(home).encode()
        self._written = b""
        self._process, self._terminal = pty.fork()
        if self._process == 0:
            environment = {"HOME": str(home), "TERM": "xterm-256color", "TZ": "UTC", "LANG": "C.UTF-8", "PATH": "/usr/bin:/bin"}
            os.chdir(home)
            # The first thing that the program asks is how wide the terminal is.
            fcntl.ioctl(0, termios.TIOCSWINSZ, struct.pack("4H", _ROWS, _COLUMNS, 0, 0))
            os.execve(command[0], command, environment)

    def screen(self) -> pyte.Screen:
        screen = pyte.Screen(_COLUMNS, _ROWS)
        pyte.ByteStream(screen).feed(self._written.replace(self._home, b"~"))
        return screen

    def wait_for(self, text: str) -> None:
        """Until the terminal shows this."""
        limit = time.monotonic() + _PATIENCE
        while text not in "\n".join(self.screen().display):
            if not select.select([self._terminal], [], [], max(0.0, limit - time.monotonic()))[0]:
                raise TimeoutError(f"the run does not come to show {text!r}")
            self._written += os.read(self._terminal, 65536)

    def interrupt(self) -> None:
        os.write(self._terminal, b"\x03")

    def end(self) -> None:
        os.close(self._terminal)
        os.waitpid(self._process, 0)


def run(program: Path, library: Path) -> pyte.Screen:
    """The terminal at the end of a run."""
    with tempfile.TemporaryDirectory(dir=example_folder.place()) as folder:
        home = Path(folder).resolve()
        documents = home / "Documents"
        example_folder.make(_TREE, documents)
        terminal = _Terminal([str(program), "--plugin", str(library), "Documents", _QUERY], home)
        terminal.wait_for("Live.")
        (documents / "harbour.png").write_bytes((documents / "holiday.png").read_bytes())
        terminal.wait_for("harbour.png")
        (documents / "portrait.png").rename(documents / "Ada.png")
        terminal.wait_for("Ada.png")
        (documents / "Travel/map.png").unlink()
        terminal.wait_for("- Travel/map.png")
        terminal.interrupt()
        terminal.wait_for("Stopped")
        terminal.end()
        return terminal.screen()


def _class(char: Char) -> str:
    return " ".join((["bold"] if char.bold else []) + ([_COLOURS[char.fg]] if char.fg in _COLOURS else []))


def _line(number: int, chars: list[Char]) -> str:
    """One line of the terminal. Each stretch of one colour says where it begins and how long it is, whatever the font."""
    stretches, column = [], 0
    for kind, group in groupby(chars, _class):
        text = "".join(char.data for char in group)
        shown = text.rstrip()
        if shown:
            lead = len(shown) - len(shown.lstrip())
            begin = f'x="{_MARGIN + (column + lead) * _WIDTH}" textLength="{(len(shown) - lead) * _WIDTH}"'
            stretches.append(f"<tspan {begin}{f' class={kind!r}' if kind else ''}>{escape(shown.lstrip())}</tspan>")
        column += len(text)
    return f'<text y="{_MARGIN + number * _HEIGHT + 13}">{"".join(stretches)}</text>' if stretches else ""


def picture(screen: pyte.Screen) -> str:
    """What the terminal shows, below the command that was typed."""
    prompt = [Char(data) for data in f'$ ./dev run ~/Documents "{_QUERY}"']
    rows = [prompt] + [[screen.buffer[row][column] for column in range(_COLUMNS)] for row in range(_ROWS)]
    while not "".join(char.data for char in rows[-1]).strip():
        rows.pop()
    width, height = _COLUMNS * _WIDTH + 2 * _MARGIN, len(rows) * _HEIGHT + 2 * _MARGIN
    lines = [line for line in (_line(number, row) for number, row in enumerate(rows)) if line]
    return "\n".join([
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" role="img">',
        "<title>A live query, run on Linux with the library that ships</title>",
        f"<style>{_STYLE}</style>",
        f'<rect class="ground" x="0.5" y="0.5" width="{width - 1}" height="{height - 1}" rx="8"/>',
        *lines,
        "</svg>",
    ]) + "\n"


def words(svg: str) -> list[list[str]]:
    """What stands on each line of a picture, without what differs from run to run: times and durations."""
    lines = re.findall(r"<text[^>]*>(.*)</text>", svg)
    stretches = [re.findall(r"<tspan[^>]*>([^<]*)</tspan>", line) for line in lines]
    return [[re.sub(r"\d\d:\d\d:\d\d(?=  )|[\d.]+ (?=m?s\b)", "#", text) for text in line] for line in stretches]


if __name__ == "__main__":
    print(picture(run(Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve())), end="")
