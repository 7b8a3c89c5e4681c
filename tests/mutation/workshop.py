"""Where libraries with a fault are made: one source compiled, or those that include a header, and one link. Everything
else is taken from build/asan as it is, and so are the commands."""

from __future__ import annotations

import hashlib
import json
import shlex
import shutil
import subprocess
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path

from faults import Fault
from finding import users
from needing import Needing

# What a fault may write in the place of something that the source itself does not name.
_ALWAYS_INCLUDED = ["-include", "host/services.h"]
_COUNTING = ["-fsanitize-coverage=trace-pc-guard,pc-table,no-prune", "-gline-tables-only"]
LIBRARY = "lib/Spotlight.so"
INSIDE_TESTS = "bin/whitebox-tests"


@dataclass
class Made:
    """What came of making a library: the sources that were compiled with the fault, and their objects."""

    sources: list[str]
    objects: list[Path]


class Workshop:
    """The tree, and what build/asan knows about building it."""

    def __init__(self, tree: Path, work: Path) -> None:
        self.tree = tree
        self.work = work
        self.build = tree / "build" / "asan"
        self.users = users(tree)
        self._commands: dict[str, list[str]] = {}
        self._objects: dict[str, str] = {}
        self._links = {target: self._link_command(target) for target in (LIBRARY, INSIDE_TESTS)}
        self._read_commands()
        self._plain: dict[str, bytes] = {}
        self._needing = Needing(tree, {source: self._counting(source) for source in self._objects})

    def _read_commands(self) -> None:
        for entry in json.loads((self.build / "compile_commands.json").read_text("utf-8")):
            file = Path(entry["file"])
            words = shlex.split(entry["command"])
            place = str(file.relative_to(self.tree)) if file.is_relative_to(self.tree) else ""
            # The library that counts for ./dev coverage is made of the same sources.
            made = words[words.index("-o") + 1]
            if place in self.users and made in self._links[LIBRARY]:
                self._objects[place] = made
                first = next(i for i, word in enumerate(words) if word.endswith("clang++-14"))
                flags = words[first + 1 : words.index("-o")]
                # Warnings are for what people wrote, and nobody steps through a fault.
                self._commands[place] = [flag for flag in flags if not flag.startswith(("-W", "-g"))]
        missing = [file for file in self.users if file.endswith(".cpp") and file not in self._objects]
        if missing:
            raise SystemExit(f"mutate: build/asan does not build {missing[0]}")

    def _link_command(self, target: str) -> list[str]:
        lines = subprocess.run(
            ["ninja", "-C", str(self.build), "-t", "commands", target], check=True, capture_output=True, text=True
        ).stdout.splitlines()
        words = shlex.split(lines[-1].removeprefix(": && ").removesuffix(" && :"))
        words[words.index("-o") + 1] = "@OUTPUT@"
        return words

    def parsing_flags(self) -> list[str]:
        """What clang must know to read any source of the product."""
        any_flags = next(iter(self._commands.values()))
        return [flag for flag in any_flags if not flag.startswith("-f")]

    def compile_fault(self, fault: Fault, folder: Path) -> Made | None:
        """Compiles what the fault is part of; None when it does not compile."""
        changed = self._lay_out(fault, folder)
        made = Made(self._needing_sources(fault), [])
        for source in made.sources:
            path = changed if source == fault.file else self.tree / source
            made.objects.append(folder / (source.replace("/", "_") + ".o"))
            if not self._compile(source, path, made.objects[-1], ["-I", str(folder / "tree")]):
                return None
        return made

    def _needing_sources(self, fault: Fault) -> list[str]:
        return [source for source in self.users[fault.file] if self._needing.needs(source, fault)]

    def _counting(self, source: str) -> Path:
        return self.work / "counting" / (source.replace("/", "_") + ".o")

    def _lay_out(self, fault: Fault, folder: Path) -> Path:
        shutil.rmtree(folder, ignore_errors=True)
        changed = folder / "tree" / fault.file
        changed.parent.mkdir(parents=True)
        changed.write_bytes(fault.applied(self.tree))
        return changed

    def _compile(self, source: str, path: Path, output: Path, first: list[str], plain: bool = False) -> bool:
        flags = self._commands[source]
        if plain:
            flags = [*(flag for flag in flags if not flag.startswith(("-fsanitize", "-fno-sanitize", "-O"))), "-O2"]
        command = ["clang++-14", *first, *flags, "-w", *_ALWAYS_INCLUDED, "-o", str(output), "-c", str(path)]
        return subprocess.run(command, cwd=self.build, capture_output=True, check=False).returncode == 0

    def link_library(self, made: Made, folder: Path) -> Path:
        """The library with the fault."""
        replaced = {self._objects[source]: str(path) for source, path in zip(made.sources, made.objects)}
        words = [replaced.get(word, word) for word in self._links[LIBRARY]]
        return self._link(words, folder / "Spotlight.so")

    def link_inside_tests(self, made: Made, folder: Path) -> Path:
        """The tests that are linked with the product, with the fault in it. Its objects come first of all: the tests have
        inline functions of the product's headers as well, without the fault, and the linker takes the first."""
        words = self._links[INSIDE_TESTS]
        first = next(place for place, word in enumerate(words) if word.endswith(".o"))
        return self._link([*words[:first], *map(str, made.objects), *words[first:]], folder / "whitebox-tests")

    def _link(self, words: list[str], output: Path) -> Path:
        command = [str(output) if word == "@OUTPUT@" else word for word in words]
        subprocess.run(command, cwd=self.build, check=True, capture_output=True)
        return output

    def makes_the_same_code(self, fault: Fault, folder: Path) -> bool:
        """Whether an optimising compiler makes of the faulty source what it makes of the right one."""
        changed = self._lay_out(fault, folder / "plain")
        output = folder / "plain.o"
        for source in self._needing_sources(fault):
            if source not in self._plain:
                self._compile(source, self.tree / source, output, [], plain=True)
                self._plain[source] = output.read_bytes()
            path = changed if source == fault.file else self.tree / source
            overlay = ["-I", str(folder / "plain" / "tree")]
            if not self._compile(source, path, output, overlay, plain=True):
                return False
            if output.read_bytes() != self._plain[source]:
                return False
        return True

    def counting_library(self, recorder: Path, jobs: int) -> Path:
        """The product without a fault, which notes where it was. Made anew when a source changed, or how it is counted."""
        folder = self.work / "counting"
        folder.mkdir(parents=True, exist_ok=True)
        library, made_of = folder / "Spotlight.so", folder / "made-of"
        digest = " ".join([digest_of([recorder, *(self.tree / file for file in self.users)]), *_COUNTING])
        if library.exists() and made_of.exists() and made_of.read_text("utf-8") == digest:
            return library
        sanitizing = ("-fsanitize", "-fno-sanitize")
        flags = [flag for flag in next(iter(self._commands.values())) if not flag.startswith(sanitizing)]

        def counted(source: str) -> str:
            output = str(self._counting(source))
            command = ["clang++-14", *flags, *_COUNTING, "-w", "-o", output, "-c", str(self.tree / source)]
            subprocess.run(command, cwd=self.build, check=True)
            return output

        with ThreadPoolExecutor(jobs) as pool:
            replaced = dict(zip(self._objects.values(), pool.map(counted, self._objects)))
        own = str(folder / "recorder.o")
        subprocess.run(["clang++-14", *flags, "-w", "-o", own, "-c", str(recorder)], cwd=self.build, check=True)
        words = [replaced.get(word, word) for word in self._links[LIBRARY] if not word.startswith(sanitizing)]
        self._link([*words, own], library)
        made_of.write_text(digest, "utf-8")
        return library


def digest_of(files: list[Path]) -> str:
    """Tells whether any of these files changed."""
    digest = hashlib.sha256()
    for file in files:
        digest.update(file.read_bytes())
    return digest.hexdigest()
