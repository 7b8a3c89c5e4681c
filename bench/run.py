"""Measures the main job: a query over many small files beside find on the same files, and a burst of changes.

    run.py PROGRAMS LIBRARY run|burst [--once] [--page FILE]

PROGRAMS is the folder of the optimised programs, LIBRARY the one that ships. The files are made in the folder for
temporary files and removed afterwards; they have sizes, but no content that would take room.
"""

from __future__ import annotations

import argparse
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass
from pathlib import Path

import picture

SIZES = (10_000, 100_000, 1_000_000)
BURST = (10_000, 100_000)
BURST_BASE = 1_000_000
_FILES_IN_A_FOLDER = 1000
_ONE_IN_TEN = "kMDItemFSName == '*.md'"
_ALL = "kMDItemFSName == '*'"
_NONE = "kMDItemFSName == 'no such name'"
_GOALS = {"one in ten": 1.5, "all, sorted": 3.0}
_BYTES_GOAL, _GROWTH_GOAL, _UPDATE_GOAL = 200, 10.5, 0.1
_TICKS = os.sysconf("SC_CLK_TCK")


def make_files(folder: Path, count: int) -> None:
    """One in ten has the extension md. Names come in another order than that in which they sort."""
    for first in range(0, count, _FILES_IN_A_FOLDER):
        inner = folder / f"folder {first // _FILES_IN_A_FOLDER}"
        inner.mkdir(parents=True)
        for index in range(first, min(first + _FILES_IN_A_FOLDER, count)):
            name = f"file {index * 7919 % count}.{'md' if index % 10 == 0 else 'txt'}"
            descriptor = os.open(inner / name, os.O_WRONLY | os.O_CREAT, 0o644)
            os.ftruncate(descriptor, index % 5000)
            os.close(descriptor)


@dataclass
class Cost:
    """Seconds of processor time, bytes of memory at most, and seconds until the first and the last event."""

    processor: float
    memory: int = 0
    first: float = 0
    last: float = 0


def _finished(process: subprocess.Popen) -> Cost:
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode:
        sys.exit(f"{process.args[0]} failed")
    return Cost(usage.ru_utime + usage.ru_stime)


def _memory(process: subprocess.Popen, what: str) -> int:
    """VmRSS is what is in use, VmHWM the most that ever was. (What wait4 tells of is the most of this program, too.)"""
    status = Path(f"/proc/{process.pid}/status").read_text()
    return 1024 * next(int(line.split()[1]) for line in status.splitlines() if line.startswith(what))


def cost_of_find(folder: Path) -> Cost:
    with subprocess.Popen(["find", folder, "-printf", "%p %s %t\n"], stdout=subprocess.DEVNULL) as process:
        return _finished(process)


def cost_of_query(programs: Path, library: Path, folder: Path, query: str) -> Cost:
    command = [programs / "spotlight-run", "--plugin", library, "--once", "--limit", "1", folder, query]
    begun = time.monotonic()
    times: dict[str, float] = {}
    memory = 0
    with subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True) as process:
        for line in process.stderr:
            if line.startswith(("Progress", "Finish")):
                times.setdefault("first", time.monotonic() - begun)
                times["last"] = time.monotonic() - begun
                memory = _memory(process, "VmHWM")
        cost = _finished(process)
    cost.memory, cost.first, cost.last = memory, times["first"], times["last"]
    return cost


def least(measure, times: int) -> Cost:
    """The one of several that took least: what others do with the machine only ever adds."""
    return min((measure() for _ in range(times)), key=lambda cost: cost.processor)


class Watcher:
    """A program with a live query, which tells what each event brings."""

    def __init__(self, programs: Path, library: Path, folder: Path, number: int, milliseconds: int) -> None:
        program = Path(__file__).with_name("watcher.bas")
        self._process = subprocess.Popen(
            [programs / "spotlight-program", "--plugin", library, program, folder, str(number), str(milliseconds)],
            stdout=subprocess.PIPE, text=True, bufsize=1)
        self.results = int(self._next("finish")[0])

    def _next(self, event: str) -> list[str]:
        word, *numbers = self._process.stdout.readline().split() or ["nothing"]
        if word != event:
            sys.exit(f"the program said {word} in place of {event}")
        return numbers

    def await_changes(self, kind: int, count: int) -> int:
        """Waits until so many items were added (0), changed (1) or removed (2), and says how many were in the end."""
        found = 0
        while found < count:
            found += int(self._next("update")[kind])
        return found

    def processor(self) -> float:
        fields = Path(f"/proc/{self._process.pid}/stat").read_text().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / _TICKS

    def memory(self) -> int:
        return _memory(self._process, "VmRSS")

    def end(self) -> None:
        self._process.send_signal(signal.SIGKILL)
        self._process.wait()
        self._process.stdout.close()


def time_of_update(programs: Path, library: Path, folder: Path) -> float:
    watcher = Watcher(programs, library, folder, 1, 0)
    taken = []
    for turn in range(3):
        time.sleep(0.5)
        begun = time.monotonic()
        (folder / f"made meanwhile {turn}").touch()
        watcher.await_changes(0, 1)
        taken.append(time.monotonic() - begun)
    watcher.end()
    return min(taken)


def _table(heading: tuple[str, ...], lines: list[tuple[str, ...]]) -> str:
    rule = "|---|" + "--:|" * (len(heading) - 1)
    return "\n".join([f"| {' | '.join(heading)} |", rule, *(f"| {' | '.join(line)} |" for line in lines)])


def run(programs: Path, library: Path, sizes: tuple[int, ...], times: int) -> str:
    lines = []
    before: dict[str, tuple[int, float]] = {}
    with tempfile.TemporaryDirectory() as name:
        empty = Path(name) / "empty"
        empty.mkdir()
        without_files = cost_of_query(programs, library, empty, _NONE).memory
        for size in sizes:
            folder = Path(name) / "files"
            make_files(folder, size)
            cost_of_find(folder)  # so that everybody finds the folders in memory
            find = least(lambda: cost_of_find(folder), times)
            lines.append((f"{size:,} files, find", f"{find.processor:.2f} s", "1.00", "", "", "", ""))
            for what, query in (("one in ten", _ONE_IN_TEN), ("all, sorted", _ALL), ("none", _NONE)):
                cost = least(lambda: cost_of_query(programs, library, folder, query), times)
                grown = ""
                if what in before:
                    smaller, processor = before[what]
                    grown = f"{cost.processor / processor / (size / smaller) * 10:.1f}"
                before[what] = size, cost.processor
                lines.append((
                    f"{size:,} files, {what}", f"{cost.processor:.2f} s", f"{cost.processor / find.processor:.2f}",
                    f"{(cost.memory - without_files) / size:.0f}", f"{cost.first:.2f} s", f"{cost.last:.2f} s", grown))
                print(*lines[-1], sep="  ", flush=True)
            update = time_of_update(programs, library, folder)
            lines.append((f"{size:,} files, an update", "", "", "", f"{update:.3f} s", "", ""))
            print(*lines[-1], sep="  ", flush=True)
            shutil.rmtree(folder)
    return _table(("what", "processor", "find = 1", "bytes a file", "first event", "last event", "growth"), lines)


def _burst_of(watcher: Watcher, folder: Path, size: int, at_rest: int) -> list[tuple[str, ...]]:
    inside, elsewhere = folder / "burst", folder / "moved"
    inside.mkdir()
    elsewhere.mkdir()
    watcher.await_changes(0, 2)
    acts = (("made", 0, lambda name: (inside / name).touch()),
            ("changed", 1, lambda name: (inside / name).write_text("changed")),
            ("moved", 1, lambda name: (inside / name).rename(elsewhere / name)),
            ("removed", 2, lambda name: (elsewhere / name).unlink()))
    lines = []
    for what, kind, act in acts:
        processor, begun = watcher.processor(), time.monotonic()
        for index in range(size):
            act(f"{index}.txt")
        heard = watcher.await_changes(kind, size)
        taken = watcher.processor() - processor
        lines.append((f"{size:,} files {what}", f"{heard:,}", f"{time.monotonic() - begun:.1f} s",
                      f"{taken / size * 1e6:.0f} µs", f"{(watcher.memory() - at_rest) / 1e6:+.0f} MB"))
        print(*lines[-1], sep="  ", flush=True)
    inside.rmdir()
    elsewhere.rmdir()
    watcher.await_changes(2, 2)
    return lines


def _folder_in_memory() -> str | None:
    """None where there is no such folder with room. On a disk the removal of a file that was written to waits for the disk,
    and changes that come one by one cost what it takes to wake a process."""
    folder, needed = Path("/dev/shm"), 4 << 30
    return str(folder) if folder.is_dir() and shutil.disk_usage(folder).free > needed else None


def burst(programs: Path, library: Path, folder: Path, sizes: tuple[int, ...]) -> str:
    watcher = Watcher(programs, library, folder, 10_000, 100)
    at_rest = watcher.memory()
    lines = [line for size in sizes for line in _burst_of(watcher, folder, size, at_rest)]
    watcher.end()
    said = f"The query has {watcher.results:,} results and takes {at_rest / 1e6:.0f} MB before the first change.\n\n"
    return said + _table(("what", "heard of", "until then", "processor a change", "memory"), lines)


def main() -> None:
    parser = argparse.ArgumentParser(add_help=False)
    parser.add_argument("programs", type=Path)
    parser.add_argument("library", type=Path)
    parser.add_argument("what", choices=("run", "burst"))
    parser.add_argument("--once", action="store_true")
    parser.add_argument("--page", type=Path)
    given = parser.parse_args()
    if given.what == "run":
        sizes = (100, 1000) if given.once else SIZES
        text = run(given.programs, given.library, sizes, 1 if given.once else 3)
    else:
        base, sizes = (1000, (100,)) if given.once else (BURST_BASE, BURST)
        with tempfile.TemporaryDirectory(dir=_folder_in_memory()) as name:
            make_files(Path(name), base)
            text = burst(given.programs, given.library, Path(name), sizes)
    if given.page:
        picture.put_into_page(given.page, given.what, text)


if __name__ == "__main__":
    main()
