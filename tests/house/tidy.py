"""Runs clang-tidy on the sources that the lint preset compiles, each once: what it found nothing in is remembered.

What is remembered of a source is one number, made from everything that the outcome depends on: the source and all that
it includes of this tree, how it is compiled, the checks, and the versions of the tools and of the headers around it. It
is the same in a copy of the tree. The numbers are names of empty files in build/linted.

The checks visit the declarations of this tree alone, which own_declarations.cpp sees to. Sources that are compiled alike
are read several at a time, one behind the other in one file, so that what they include is read once. Where anything is
found in that, or they cannot stand together, each half of them is read, down to the one source that has it: what is said
is always said of a source that was read by itself. Read by themselves are from the start those that have what a program
has once, and those in which a name that they declare to use, and do not, might pass for used by another.
"""

from __future__ import annotations

import argparse
import collections
import functools
import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

_TIDY = "clang-tidy-14"
_PLUGIN = Path(__file__).with_name("own_declarations.cpp")
_INCLUDE = re.compile(rb'^[ \t]*#[ \t]*(?:include|import)[ \t]*["<]([^">]+)[">]', re.MULTILINE)
_USING = re.compile(r"^\s*(?:using (?:[\w:]+::)?(\w+);|namespace (\w+) =)", re.MULTILINE)
_PROGRAM = re.compile(r"^(?:extern \"C\" )?int (?:main|LLVMFuzzerTestOneInput)\(", re.MULTILINE)
_TOGETHER = 14
# The packages whose headers sources include; a new version may mean other findings.
_PACKAGES = ("clang-tidy-14", "libstdc++-12-dev", "libc6-dev", "libicu-dev", "doctest-dev", "valgrind")


class Tree:
    """The sources of one tree and what each depends on."""

    def __init__(self, root: Path) -> None:
        self.root = root.resolve()
        self.build = self.root / "build" / "lint"
        self.clean = self.root / "build" / "linted"
        self.commands: dict[Path, str] = {}
        for entry in json.loads((self.build / "compile_commands.json").read_text("utf-8")):
            # The same source in two programs is read as the first of them compiles it.
            self.commands.setdefault(Path(entry["file"]), entry["command"])
        self._surroundings = _surroundings(self.root)

    @functools.cache
    def _contents(self, path: Path) -> tuple[str, tuple[Path, ...]]:
        """A digest of the file, and the files of this tree that it includes, wherever it does so."""
        contents = path.read_bytes()
        included = []
        for match in _INCLUDE.finditer(contents):
            name = match[1].decode("utf-8", "replace")
            for folder in (path.parent, self.root, self.root / "platform" / "include"):
                if (candidate := folder / name).is_file():
                    included.append(candidate.resolve())
                    break
        return hashlib.sha256(contents).hexdigest(), tuple(included)

    def closure(self, source: Path) -> set[Path]:
        """The source and everything of this tree that it includes, directly or not."""
        found = {source}
        waiting = [source]
        while waiting:
            for included in self._contents(waiting.pop())[1]:
                if included not in found:
                    found.add(included)
                    waiting.append(included)
        return found

    def batches(self, sources: list[Path]) -> list[list[Path]]:
        """These sources, those together that may be read together."""
        alike: dict[str, list[Path]] = collections.defaultdict(list)
        alone = []
        for source in sources:
            text = source.read_text("utf-8")
            if _PROGRAM.search(text) or _may_use_nothing(text):
                alone.append([source])
            else:
                alike[" ".join(self._words(source))].append(source)
        together = [some[i : i + _TOGETHER] for some in alike.values() for i in range(0, len(some), _TOGETHER)]
        return together + alone

    def _words(self, source: Path) -> list[str]:
        """How it is compiled, without its own name and that of what comes of it."""
        words = shlex.split(self.commands[source])
        del words[words.index("-c") : words.index("-c") + 2], words[words.index("-o") : words.index("-o") + 2]
        return words

    def write_batch(self, batch: list[Path], name: str) -> Path:
        """One source of several, in a folder of its own with the command that compiles it."""
        folder = self.build / "batches" / name
        folder.mkdir(parents=True, exist_ok=True)
        file = folder / "together.cpp"
        # Behind a macro clang-tidy does not take an include for a repeated one.
        end = "\n#define END_OF_SOURCE\n#undef END_OF_SOURCE\n"
        file.write_text(end.join(source.read_text("utf-8") for source in batch), "utf-8")
        entry = {"file": str(file), "directory": str(self.build), "arguments": [*self._words(batch[0]), "-c", str(file)]}
        (folder / "compile_commands.json").write_text(json.dumps([entry]), "utf-8")
        return file

    def key(self, source: Path) -> str:
        """The number that stands for the source and all that the findings in it depend on."""
        words = [word.replace(str(self.root), "") for word in shlex.split(self.commands[source])]
        lines = [self._surroundings, *words]
        for path in sorted(self.closure(source)):
            lines.append(f"{path.relative_to(self.root)} {self._contents(path)[0]}")
        return hashlib.sha256("\n".join(lines).encode()).hexdigest()


def _may_use_nothing(text: str) -> bool:
    """Whether a name that the source declares to use stands nowhere else in it."""
    names = [one or other for one, other in _USING.findall(text)]
    return any(len(re.findall(rf"\b{name}\b", text)) < 2 for name in names)


def _output(*command: str, cwd: Path | None = None) -> str:
    return subprocess.run(command, cwd=cwd, capture_output=True, text=True).stdout


def _surroundings(root: Path) -> str:
    versions = _output("dpkg-query", "-W", "-f=${Package} ${Version}\n", *_PACKAGES)
    return versions + (root / ".clang-tidy").read_text("utf-8") + _PLUGIN.read_text("utf-8")


def changed_since(root: Path, reference: str) -> set[Path]:
    """The files that differ from where this branch left that one, those that git does not know yet among them."""
    base = _output("git", "merge-base", reference, "HEAD", cwd=root).strip() or reference
    names = _output("git", "diff", "--name-only", "-z", base, cwd=root)
    names += _output("git", "ls-files", "-z", "--others", "--exclude-standard", cwd=root)
    return {root / name for name in names.split("\0") if name}


def chosen(tree: Tree, changed: set[Path]) -> list[Path]:
    """The changed sources, and for each changed header the sources named like it, or one that includes it."""
    found = {source for source in tree.commands if source in changed}
    for header in sorted(path for path in changed if path.suffix in (".h", ".def")):
        users = sorted(source for source in tree.commands if header in tree.closure(source))
        if users and not found.intersection(users):
            found.add(next((user for user in users if user.stem == header.stem), users[0]))
    return sorted(found)


def built_plugin(tree: Tree) -> Path:
    """The plugin, compiled where that was not done yet. Its undefined symbols are clang-tidy's own."""
    source = _PLUGIN.read_bytes()
    library = tree.build / f"own-declarations-{hashlib.sha256(source).hexdigest()[:16]}.so"
    if not library.exists():
        options = ["-std=c++17", "-O1", "-fno-rtti", "-fPIC", "-shared", "-isystem", "/usr/lib/llvm-14/include"]
        subprocess.run(["clang++-14", *options, str(_PLUGIN), "-o", f"{library}.new"], check=True)
        Path(f"{library}.new").rename(library)
    return library


def tidy(tree: Tree, sources: list[Path]) -> bool:
    """Whether nothing is found in these. Prints what is."""
    tree.clean.mkdir(exist_ok=True)
    plugin = built_plugin(tree)

    marks = {source: tree.clean / tree.key(source) for source in sources}

    def examine(source: Path, commands: Path) -> subprocess.CompletedProcess[str]:
        options = [f"--load={plugin}", "-p", str(commands), "--quiet", "--warnings-as-errors=*"]
        command = [_TIDY, *options, str(source)]
        return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)

    def is_clean(source: Path) -> bool:
        examined = examine(source, tree.build)
        if examined.returncode == 0 and not examined.stdout:
            marks[source].touch()
            return True
        sys.stdout.write(examined.stdout or f"{source}: {_TIDY} ended with {examined.returncode}\n")
        sys.stdout.flush()
        return False

    def are_clean(batch: list[Path]) -> bool:
        if len(batch) == 1:
            return is_clean(batch[0])
        together = tree.write_batch(batch, marks[batch[0]].name)
        examined = examine(together, together.parent)
        if examined.returncode == 0 and not examined.stdout:
            for source in batch:
                marks[source].touch()
            return True
        middle = len(batch) // 2
        return all([are_clean(batch[:middle]), are_clean(batch[middle:])])

    unknown = [source for source in sources if not marks[source].exists()]
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        return all(list(pool.map(are_clean, tree.batches(unknown))))


def main() -> None:
    """Command line: tidy.py TREE [--changed-since REFERENCE]. Exits with 1 if anything is found."""
    parser = argparse.ArgumentParser()
    parser.add_argument("tree", type=Path)
    parser.add_argument("--changed-since")
    arguments = parser.parse_args()
    tree = Tree(arguments.tree)
    sources = sorted(tree.commands)
    if arguments.changed_since:
        sources = chosen(tree, changed_since(tree.root, arguments.changed_since))
    sys.exit(0 if tidy(tree, sources) else 1)


if __name__ == "__main__":
    main()
