"""Every line of the host's language on the pages, and every example, runs with the library that ships, on the oldest and
on the newest host, and prints what the page says.

An example ends with a comment that begins "It prints" and shows its output.
"""

from __future__ import annotations

import os
import re
import signal
import subprocess
import sys
import tempfile
import threading
import unittest
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path

import example_folder
from snippets import snippets

PROGRAM = os.environ["PROGRAM"]
PLUGIN = os.environ["PLUGIN"]
TREE = Path(os.environ["SOURCE_TREE"])
WORKED_QUERIES = TREE / "docs/guides/worked-queries.md"

_NOT_SOURCES = ("build", "dist", ".git")
# A host that does not tell its version counts as older than any.
HOSTS = ("none", "3000")
_PATIENCE = 120
_STEPS = "1000000"
_PRINTS = re.compile(r"\n' It prints(?P<stopped>, until it is stopped)?:\n(?P<output>(?:'.*\n)*)$")


@dataclass
class Program:
    """What is run, and what it is to print."""

    name: str
    text: str
    output: str
    is_stopped: bool = False
    is_worked_query: bool = False


def texts(pattern: str) -> list[Path]:
    """The files of the tree with such names, but for what is built."""
    found = (path for path in TREE.rglob(pattern) if path.relative_to(TREE).parts[0] not in _NOT_SOURCES)
    return sorted(path for path in found if path.is_file())


def pages() -> list[Path]:
    return texts("*.md")


def programs_of(page: Path) -> list[Program]:
    found = []
    for snippet in snippets(page.read_text("utf-8")):
        name = f"{page.relative_to(TREE)}:{snippet.block.first_line}"
        output = "".join(line + "\n" for line in snippet.output or [])
        text = "".join(line + "\n" for line in snippet.lines())
        # One statement that shows what an expression finds.
        is_worked_query = page == WORKED_QUERIES and bool(snippet.prepared)
        found.append(Program(name, text, output, snippet.is_stopped, is_worked_query))
    return found


def examples() -> list[Path]:
    """The programs; a module of the toolkit runs inside those that name it, and what is in bench/ when that measures."""
    elsewhere = (TREE / "examples/toolkit", TREE / "bench")
    return [path for path in texts("*.bas") if path.parent not in elsewhere]


def example(path: Path) -> Program:
    text = path.read_text("utf-8")
    told = _PRINTS.search(text)
    if not told:
        raise ValueError(f"{path.name} does not say what it prints")
    output = re.sub(r"^'(?:   )?", "", told["output"], flags=re.MULTILINE)
    return Program(path.name, text, output, bool(told["stopped"]))


def started(program: Program, host: str, home: Path) -> subprocess.Popen[str]:
    (home / "program.bas").write_text(program.text, "utf-8")
    (home / "toolkit").symlink_to(TREE / "examples/toolkit")
    return subprocess.Popen(
        [PROGRAM, "--plugin", PLUGIN, "--host-version", host, "--steps", _STEPS, "program.bas"],
        cwd=home,
        env={**os.environ, "HOME": str(home), "TMPDIR": str(home), "TZ": "UTC"},
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
    )


def outcome(program: Program, host: str) -> str:
    """What a program printed, on both streams, and its exit code where that is not 0. One that goes on by itself is
    stopped when it has printed as many lines as it is to print."""
    with tempfile.TemporaryDirectory(dir=example_folder.place()) as folder:
        home = Path(folder).resolve()
        example_folder.make(TREE, home / "Documents")
        with started(program, host, home) as process:
            assert process.stdout
            watchdog = threading.Timer(_PATIENCE, process.kill)
            watchdog.start()
            text = ""
            if program.is_stopped:
                for _ in program.output.splitlines():
                    text += process.stdout.readline()
                process.send_signal(signal.SIGINT)
            text += process.stdout.read()
            code = process.wait()
            watchdog.cancel()
    return text.replace(str(home), "~") + (f"exit code {code}\n" if code else "")


def tell(what: str) -> None:
    """The summary at the end of ./dev test repeats it."""
    print(f"\nexecuted: {what}", file=sys.stderr)


class Pages(unittest.TestCase):
    def check(self, programs: list[Program]) -> None:
        runs = [(program, host) for program in programs for host in HOSTS]
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            outcomes = list(pool.map(lambda run: outcome(*run), runs))
        for (program, host), printed in zip(runs, outcomes):
            with self.subTest(program.name, host=host):
                self.assertEqual(printed, program.output)

    def test_every_snippet_on_every_page_runs_and_prints_what_the_page_says(self) -> None:
        programs = [program for page in pages() for program in programs_of(page)]
        fences = sum(len(re.findall(r"^```basic", page.read_text("utf-8"), re.MULTILINE)) for page in pages())
        queries = [program for program in programs if program.is_worked_query]
        asked = len(re.findall(r"^### ", WORKED_QUERIES.read_text("utf-8"), re.MULTILINE))
        self.assertEqual((len(programs), len(queries)), (fences, asked))
        self.assertGreaterEqual(len(queries), 20)
        self.check(programs)
        tell(f"{len(programs) - len(queries)} snippets and {len(queries)} worked queries on {len(pages())} pages, all "
             f"that there are, on {len(HOSTS)} hosts")

    def test_every_example_runs_and_prints_what_it_says(self) -> None:
        programs = [example(path) for path in examples()]
        self.assertGreaterEqual(len(programs), 10)
        self.check(programs)
        tell(f"{len(programs)} programs, all that there are, on {len(HOSTS)} hosts")

    def test_every_example_and_every_module_of_the_toolkit_is_listed_beside_the_examples(self) -> None:
        listed = (TREE / "examples/README.md").read_text("utf-8")
        for path in [*examples(), *(TREE / "examples/toolkit").glob("*.bas")]:
            self.assertIn(f"({path.relative_to(TREE / 'examples')})", listed)

    def test_the_page_of_worked_queries_says_how_many_there_are(self) -> None:
        queries = [program for program in programs_of(WORKED_QUERIES) if program.is_worked_query]
        said = re.search(r"^(\d+) questions", WORKED_QUERIES.read_text("utf-8"), re.MULTILINE)
        assert said
        self.assertEqual(int(said[1]), len(queries))

    def test_every_module_of_the_toolkit_is_used_by_an_example(self) -> None:
        texts = "".join(path.read_text("utf-8") for path in examples())
        for path in (TREE / "examples/toolkit").glob("*.bas"):
            self.assertRegex(texts, rf"\b{path.stem}\b")

    def test_an_output_that_differs_by_a_letter_or_a_line_is_found(self) -> None:
        program = Program("here", 'Print "letter"\n', "letter\n")
        self.assertEqual(outcome(program, "none"), program.output)
        for wrong in ("lettre\n", "", "letter\nletter\n"):
            self.assertNotEqual(outcome(program, "none"), wrong)


if __name__ == "__main__":
    unittest.main()
