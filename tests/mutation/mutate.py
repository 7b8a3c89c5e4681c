"""Makes faults in the product's sources and looks whether the tests notice them.

mutate.py TREE [--sample N] [--seed S] [--jobs J] [ROOM|FILE...]: of all rooms, if none is named. A sample takes N faults of each room
or file. The product's tests must be built, in build/asan. Exits with 1 when the list of unnoticeable faults is wrong, or
a room that was tried as a whole falls short of the goal.
"""

from __future__ import annotations

import argparse
import json
import os
import queue
import random
import shutil
import sys
import tempfile
import time
from concurrent.futures import ProcessPoolExecutor, ThreadPoolExecutor, as_completed
from dataclasses import asdict
from itertools import repeat
from pathlib import Path

from faults import ChangedLines, Fault
from finding import ROOMS, find_faults, product_files
from reach import measure, runs_again
from report import Tally, complaints, diff, table
from trial import Court, Outcome, Verdict
from unnoticeable import read_list
from workshop import Workshop, digest_of

_HERE = Path(__file__).resolve().parent
_OFTEN = 30.0


def _say(sentence: str) -> None:
    print(f"mutate: {sentence}", file=sys.stderr, flush=True)


def _choose(faults: list[Fault], whats: list[str], sample: int | None, seed: int) -> list[Fault]:
    """All, or so many of each room or file."""
    if sample is None:
        return faults
    chosen: list[Fault] = []
    for what in whats:
        mine = [fault for fault in faults if what in (fault.room, fault.file)]
        picked = set(random.Random(seed).sample(range(len(mine)), min(sample, len(mine))))
        chosen += [fault for place, fault in enumerate(mine) if place in picked]
    return chosen


class Run:
    """A run over chosen faults."""

    def __init__(self, workshop: Workshop, court: Court, listed: dict[ChangedLines, str], killers: Path) -> None:
        self._workshop = workshop
        self._court = court
        self._listed = listed
        self._killers = killers
        self.tallies: dict[str, Tally] = {}
        self.survivors: list[Fault] = []
        self.wrongly_listed: list[Fault] = []

    def try_all(self, faults: list[Fault], jobs: int) -> None:
        """Tries them side by side, and says now and then how far it is."""
        # Several runs may go on at the same time.
        own = Path(tempfile.mkdtemp(prefix="jobs-", dir=self._workshop.work))
        folders: queue.SimpleQueue[Path] = queue.SimpleQueue()
        for job in range(jobs):
            folders.put(own / str(job))
        said = time.monotonic()

        def tried(fault: Fault) -> tuple[Fault, Verdict]:
            folder = folders.get()
            try:
                return fault, self._court.tried(fault, folder)
            finally:
                folders.put(folder)

        with ThreadPoolExecutor(jobs) as pool:
            for place, one in enumerate(as_completed([pool.submit(tried, fault) for fault in faults]), 1):
                self._note(*one.result())
                if time.monotonic() - said > _OFTEN:
                    said = time.monotonic()
                    _say(f"{place} of {len(faults)} faults tried, {len(self.survivors)} survive")
        shutil.rmtree(own)
        self.survivors.sort(key=lambda fault: (fault.file, fault.start))

    def _note(self, fault: Fault, verdict: Verdict) -> None:
        changed = fault.changed_lines(self._workshop.tree)
        is_listed = changed in self._listed
        self.tallies.setdefault(fault.room, Tally()).add(verdict.outcome, is_listed)
        if verdict.killer:
            with self._killers.open("a", encoding="utf-8") as kept:
                kept.write(json.dumps([str(changed), verdict.killer]) + "\n")
        if is_listed and verdict.outcome != Outcome.SURVIVED:
            self.wrongly_listed.append(fault)
        elif verdict.outcome == Outcome.SURVIVED and not is_listed:
            self.survivors.append(fault)
            _say(f"survives: {diff(fault, changed)}")


def _found(tree: Path, files: list[str], flags: list[str], kept: Path, jobs: int) -> list[Fault]:
    """The faults of these files. They are kept, file by file, until any of the product's sources or a maker changes."""
    everything = [tree / file for file in product_files(tree)]
    digest = digest_of([*everything, *sorted(_HERE.glob("*.py"))])
    known = json.loads(kept.read_text("utf-8")) if kept.exists() else {}
    if known.get("of") != digest:
        known = {"of": digest, "faults": {}}
    missing = [file for file in files if file not in known["faults"]]
    with ProcessPoolExecutor(jobs) as pool:
        for file, faults in zip(missing, pool.map(find_faults, repeat(tree), [[one] for one in missing], repeat(flags))):
            known["faults"][file] = [asdict(fault) for fault in faults]
    kept.write_text(json.dumps(known), "utf-8")
    lists = [known["faults"][file] for file in files]
    return [Fault(**{**one, "function": one["function"] and tuple(one["function"])}) for some in lists for one in some]


def _known_killers(path: Path) -> dict[str, str]:
    if not path.exists():
        return {}
    return dict(json.loads(line) for line in path.read_text("utf-8").splitlines())


def main() -> int:
    """Reads the command line, runs, prints."""
    parser = argparse.ArgumentParser(prog="mutate")
    parser.add_argument("tree", type=Path)
    parser.add_argument("what", nargs="*")
    parser.add_argument("--sample", type=int)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=len(os.sched_getaffinity(0)))
    options = parser.parse_intermixed_args()

    tree, jobs = options.tree.resolve(), options.jobs
    work = tree / "build" / "mutate"
    work.mkdir(parents=True, exist_ok=True)
    workshop = Workshop(tree, work)
    whats = options.what or list(ROOMS)
    files = [file for file in product_files(tree) if file.split("/")[0] in whats or file in whats]
    found = _found(tree, files, workshop.parsing_flags(), work / "faults.json", jobs)
    listed = read_list(_HERE / "unnoticeable.txt")
    known = {fault.changed_lines(tree) for fault in found}
    stale = [str(entry) for entry in listed.faults if entry.file in files and entry not in known]

    programs = [workshop.build / "bin" / f"{room}-tests" for room in ROOMS]
    library = workshop.counting_library(_HERE / "reach_recorder.cpp", jobs)
    cases = measure(tree, library, programs, work / "reach.json", jobs, _say)
    once = [fault for fault in found if listed.remembers_once(fault) and not runs_again(fault, cases)]
    needed = {(fault.file, fault.function_name) for fault in once}
    stale += [f"{file}\nonce {name}" for file, name in listed.once if file in files and (file, name) not in needed]
    made = [fault for fault in found if fault not in set(once)]
    faults = _choose(made, whats, options.sample, options.seed)
    _say(f"{len(faults)} of {len(made)} faults are tried")
    killers = work / "killers.jsonl"
    run = Run(workshop, Court(workshop, cases, _known_killers(killers)), listed.faults, killers)
    for fault in once:
        run.tallies.setdefault(fault.room, Tally()).once += 1
    run.try_all(faults, jobs)

    for fault in run.survivors:
        print(diff(fault, fault.changed_lines(tree)))
    print(table(run.tallies))
    wrong = [f"unnoticeable.txt names what is no fault, or what runs again:\n{entry}" for entry in stale]
    for fault in run.wrongly_listed:
        wrong.append(f"unnoticeable.txt names a fault that is found:\n{fault.changed_lines(tree)}")
    if options.sample is None:
        wrong += complaints(run.tallies, [what for what in whats if what in ROOMS])
    for sentence in wrong:
        _say(sentence)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
