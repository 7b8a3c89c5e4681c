"""./dev on machines that lack something: packages, rights, room, or a tree that can be written to. Each gets one clear
sentence, and what changes the machine is said before it is done.

The tree is a copy of the script and its two tables. What the script asks the machine is answered by small stand-ins of
the system's own programs.
"""

from __future__ import annotations

import json
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

import container
import example_folder

_TREE = Path(os.environ["SOURCE_TREE"])
_WITHOUT_RIGHTS = ["setpriv", "--bounding-set=-all", "--inh-caps=-all"] if os.getuid() == 0 else []


class Machines(unittest.TestCase):
    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory(dir=example_folder.place())
        self.addCleanup(temporary.cleanup)
        self.tree = Path(temporary.name).resolve() / "tree"
        self.tools = self.tree.parent / "tools"
        self.tools.mkdir()
        self.calls = self.tree.parent / "calls"
        self.calls.touch()
        (self.tree / "simulator" / "cli").mkdir(parents=True)
        for folder in ("plugin", "host", "convert", "spotlight", "platform"):
            (self.tree / folder).mkdir()
        for place in ("dev.packages", "dev.commands", "simulator/cli/help.txt"):
            shutil.copy(_TREE / place, self.tree / place)
        script = (_TREE / "dev").read_text("utf-8")
        self.assertIn("export PATH=/usr/sbin:", script)
        self.assertIn(" /etc/os-release", script)
        script = script.replace("export PATH=", f"export PATH={self.tools}:")
        (self.tree / "dev").write_text(script.replace("/etc/os-release", f"{self.tools}/os-release"), "utf-8")
        (self.tree / "dev").chmod(0o755)

    def _tool(self, name: str, script: str) -> None:
        """A stand-in that notes its call and does what the script says."""
        path = self.tools / name
        path.write_text(f'#!/bin/bash\necho "{name} $*" >>"{self.calls}"\n{script}\n', "utf-8")
        path.chmod(0o755)

    def _lacks_packages(self, uid: int) -> None:
        self._tool("dpkg-query", "")
        self._tool("dpkg", "[[ $1 != --print-architecture ]] || echo amd64")
        self._tool("apt-get", "exit 1")
        self._tool("id", f"echo {uid}")
        self._system("bookworm")
        self._tool("sudo", "exit 1")

    def _system(self, codename: str) -> None:
        (self.tools / "os-release").write_text(f"NAME=Linux\nVERSION_CODENAME={codename}\n", "utf-8")

    def _dev(
        self, *words: str, rights: bool = True, environment: dict[str, str] | None = None
    ) -> subprocess.CompletedProcess[str]:
        command = [*([] if rights else _WITHOUT_RIGHTS), str(self.tree / "dev"), *words]
        return subprocess.run(
            command,
            cwd="/",
            env={**os.environ, **(environment or {})},
            stdin=subprocess.DEVNULL,
            capture_output=True,
            text=True,
            check=False,
        )

    def _sends_to_a_container(self, ran: subprocess.CompletedProcess[str]) -> None:
        self.assertEqual((ran.returncode, ran.stdout), (1, ""))
        self.assertEqual(
            ran.stderr,
            "dev: this takes Debian 12 on amd64, and elsewhere a container of it (docker or podman): "
            f"cd {self.tree} && docker build -t spotlight -f Containerfile . && "
            'docker run --rm -it -v "$PWD:/spotlight" spotlight ./dev run\n',
        )
        self.assertNotIn("apt-get", self.calls.read_text("utf-8"))

    def test_another_distribution_is_sent_to_a_container(self) -> None:
        self._lacks_packages(uid=0)
        self._system("noble")
        self._sends_to_a_container(self._dev("run", "--once"))

    def test_another_processor_is_sent_to_a_container(self) -> None:
        self._lacks_packages(uid=0)
        self._tool("dpkg", "[[ $1 != --print-architecture ]] || echo arm64")
        self._sends_to_a_container(self._dev("run", "--once"))

    def test_a_system_that_is_no_linux_is_sent_to_a_container(self) -> None:
        self._sends_to_a_container(self._dev("run", "--once", environment={"OSTYPE": "darwin23"}))

    def test_a_container_has_all_packages_that_a_command_asks_for(self) -> None:
        steps = container.steps((_TREE / "Containerfile").read_text("utf-8"))
        self.assertEqual([word for word, _ in steps], ["FROM", "RUN", "COPY", "RUN", "RUN", "RUN", "WORKDIR"])
        self.assertEqual(steps[2][1], "dev.packages /")
        reads = steps[4][1].partition(" |")[0].replace("/dev.packages", f"'{_TREE / 'dev.packages'}'")
        read = subprocess.run(["sh", "-c", reads], capture_output=True, text=True, check=True).stdout.split()
        listed = [line.split()[0] for line in (_TREE / "dev.packages").read_text("utf-8").splitlines() if line[:1].isalpha()]
        self.assertEqual(read, listed)
        self.assertEqual(
            [line for line in (_TREE / ".dockerignore").read_text("utf-8").splitlines() if not line.startswith("#")],
            ["*", "!dev.packages"],
        )

    def test_an_editor_makes_its_container_of_the_same_file(self) -> None:
        folder = _TREE / ".devcontainer"
        build = json.loads((folder / "devcontainer.json").read_text("utf-8"))["build"]
        self.assertEqual((folder / build["dockerfile"]).resolve(), (_TREE / "Containerfile").resolve())
        self.assertEqual((folder / build["context"]).resolve(), _TREE.resolve())

    def test_adding_an_architecture_is_said_before_it_is_done(self) -> None:
        self._lacks_packages(uid=0)
        # Whatever the script says, it says before this stand-in is called.
        self._tool("dpkg", '[[ $1 != --print-architecture ]] || echo amd64; [[ $1 != --add-* ]] || kill "$PPID"')
        ran = self._dev("run", "--once")
        self.assertIn("dev: adding the i386 architecture to dpkg, for 32-bit packages", ran.stderr)
        self.assertIn("dpkg --add-architecture i386\n", self.calls.read_text("utf-8"))
        self.assertNotIn("apt-get", self.calls.read_text("utf-8"))

    def test_packages_that_cannot_be_installed_are_named(self) -> None:
        self._lacks_packages(uid=0)
        ran = self._dev("build")
        self.assertEqual(ran.returncode, 1)
        self.assertRegex(ran.stderr, r"\ndev: could not install cmake .+; the whole output is in build/install.log\n\Z")

    def test_sudo_that_would_ask_is_not_asked_without_a_terminal(self) -> None:
        self._lacks_packages(uid=1000)
        ran = self._dev("build")
        self.assertEqual(ran.returncode, 1)
        self.assertRegex(
            ran.stderr,
            r"\Adev: sudo would ask for a password, and there is no terminal; as root, run: apt-get install cmake [^\n]+\n\Z",
        )
        self.assertNotIn("apt-get", self.calls.read_text("utf-8"))

    def test_without_sudo_it_says_what_root_must_run(self) -> None:
        self._lacks_packages(uid=1000)
        (self.tools / "sudo").unlink()
        for program in Path("/usr/bin").iterdir():
            if program.name != "sudo" and not (self.tools / program.name).exists():
                (self.tools / program.name).symlink_to(program)
        script = (self.tree / "dev").read_text("utf-8")
        (self.tree / "dev").write_text(script.replace(":/usr/sbin:/usr/bin:/sbin:/bin ", " "), "utf-8")
        ran = self._dev("build")
        self.assertEqual(ran.returncode, 1)
        self.assertRegex(ran.stderr, r"\Adev: not root and no sudo; as root, run: apt-get install cmake [^\n]+\n\Z")
        self.assertNotIn("apt-get", self.calls.read_text("utf-8"))

    def test_a_folder_in_which_everything_is_always_built_anew_is_named(self) -> None:
        self._tool("cmake", "")
        self._tool("ninja", "")
        said = "dev: ninja builds everything anew each time below a folder with an apostrophe in its name\n"
        self.assertNotIn(said, self._dev("build").stderr)
        self.tree = self.tree.rename(self.tree.parent / "it's a tree")
        self.assertIn(said, self._dev("build").stderr)

    def test_a_full_disk_is_named_as_the_reason(self) -> None:
        self._lacks_packages(uid=0)
        self._tool("df", "echo Avail; echo 0")
        self.assertIn(f"dev: the disk that holds {self.tree} is full\n", self._dev("build").stderr)

    def test_a_tree_that_cannot_be_written_to_gets_one_sentence(self) -> None:
        self.tree.chmod(0o555)
        self.addCleanup(self.tree.chmod, 0o755)
        ran = self._dev("build", rights=False)
        self.assertEqual(ran.returncode, 1)
        self.assertEqual(
            ran.stderr,
            f"dev: {self.tree} cannot be written to, so nothing can be built there; copy the tree to a folder of yours\n",
        )

    def _is_built(self) -> list[Path]:
        """Makes the tree one that was built at time 2000; gives the files that say so. A stand-in builds from now on."""
        os.utime(self.tree / "simulator" / "cli" / "help.txt", (1000, 1000))
        marks = []
        for preset, target in (("macho", "dylib"), ("release", "spotlight-run")):
            built = self.tree / "build" / preset
            (built / "bin").mkdir(parents=True)
            (built / "CMakeCache.txt").write_text(f"CMAKE_HOME_DIRECTORY:INTERNAL={self.tree}\n", "utf-8")
            (built / "build.ninja").touch()
            marks.append(built / f"{target}.built")
            marks[-1].touch()
            os.utime(marks[-1], (2000, 2000))
        program = self.tree / "build" / "release" / "bin" / "spotlight-run"
        program.write_text('#!/bin/bash\necho "runs $*"\n', "utf-8")
        program.chmod(0o555)
        self._tool("ninja", "")
        return marks

    def test_run_says_what_it_builds_when_sources_are_newer(self) -> None:
        library, simulator = "dev: building dist/Spotlight.dylib\n", "dev: building the simulator\n"
        for folder, said in (
            ("convert", library),
            ("simulator/cli", simulator),
            ("platform", library + simulator),
            ("docs", ""),
        ):
            with self.subTest(folder=folder):
                self._is_built()
                (self.tree / folder).mkdir(exist_ok=True)
                source = self.tree / folder / "pulled.cpp"
                source.touch()
                os.utime(source, (3000, 3000))
                ran = self._dev("run", "--once")
                self.assertEqual((ran.returncode, ran.stderr), (0, said))
                self.assertEqual(ran.stdout, f"runs --plugin {self.tree}/dist/Spotlight.dylib --once\n")
                self.assertEqual(self._dev("run", "--once").stderr, "")
                source.unlink()
                shutil.rmtree(self.tree / "build")

    def test_a_program_finds_the_example_folder_where_the_home_has_no_documents(self) -> None:
        self._is_built()
        for place in ("examples", "tests/house"):
            shutil.copytree(_TREE / place, self.tree / place)
        (self.tree / "build/release/spotlight-program.built").touch()
        program = self.tree / "build/release/bin/spotlight-program"
        program.write_text('#!/bin/bash\necho "$HOME"\n', "utf-8")
        program.chmod(0o555)
        own = self.tree.parent / "own"
        own.mkdir()
        ran = self._dev("run", "tag-report.bas", environment={"HOME": str(own)})
        given = self.tree / "build/example-home"
        self.assertEqual((ran.returncode, ran.stdout), (0, f"{given}\n"))
        self.assertEqual(
            ran.stderr,
            f"dev: there is no folder {own}/Documents, so the program finds the example folder in its place\n",
        )
        self.assertEqual(os.getxattr(given / "Documents/holiday.png", "user.kMDItemStarRating"), b"5")
        (own / "Documents").mkdir()
        ran = self._dev("run", "tag-report.bas", environment={"HOME": str(own)})
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (0, f"{own}\n", ""))

    def test_a_tree_that_is_built_and_cannot_be_written_to_just_runs(self) -> None:
        for mark in self._is_built():
            mark.chmod(0o444)
        ran = self._dev("run", "--once", rights=False)
        self.assertEqual(
            (ran.returncode, ran.stdout, ran.stderr),
            (0, f"runs --plugin {self.tree}/dist/Spotlight.dylib --once\n", ""),
        )


if __name__ == "__main__":
    unittest.main()
