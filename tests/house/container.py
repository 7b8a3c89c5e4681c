"""Does what the Containerfile says without a container: makes its root file system in a new folder, from the packages
that this machine knows how to get, clones the tree into it, and runs a command there.

    python3 -B tests/house/container.py FOLDER ./dev test

A folder that is there is not made again, and what was built in it stays. Takes root, and mmdebstrap.
"""

from __future__ import annotations

import re
import shlex
import shutil
import subprocess
import sys
from pathlib import Path

_TREE = Path(__file__).resolve().parents[2]
# Where a Debian machine has the addresses of its packages.
_SOURCES = (Path("/etc/apt/sources.list.d/debian.sources"), Path("/etc/apt/sources.list"))


def steps(text: str) -> list[tuple[str, str]]:
    """The instructions of a Containerfile, in order: each with what follows it."""
    joined = re.sub(r"\\\n *", "", re.sub(r"^#.*\n", "", text, flags=re.MULTILINE))
    return [(word, rest) for word, _, rest in (line.partition(" ") for line in joined.splitlines() if line)]


def _inside(root: Path, folder: str, command: list[str]) -> int:
    """Runs the command in a folder of that root file system, which sees processes and devices as in a container."""
    mounts = " && ".join(
        f"mount {how} {shlex.quote(str(root / place))}"
        for place, how in (("proc", "-t proc proc"), ("dev", "--rbind /dev"), ("sys", "--rbind /sys"))
    )
    enter = shlex.join(["chroot", str(root), "env", "-C", folder, "-i", "PATH=/usr/sbin:/usr/bin:/sbin:/bin", *command])
    return subprocess.run(
        ["unshare", "--mount", "--pid", "--fork", "sh", "-c", f"{mounts} && exec {enter}"], check=False
    ).returncode


def _begin(root: Path, image: str) -> None:
    """What an image's registry would hand out: the smallest Debian of that version, and how to reach its packages."""
    suites = {"debian:12": "bookworm"}
    sources = next(path for path in _SOURCES if path.is_file())
    reached = root.parent / f"{root.name}.apt"
    dump = subprocess.run(["apt-config", "dump"], capture_output=True, text=True, check=True).stdout
    reached.write_text("".join(re.findall(r"^Acquire::(?:Check-.+|https?::.+)\n", dump, re.MULTILINE)), "utf-8")
    subprocess.run(
        ["mmdebstrap", "--variant=minbase", f"--aptopt={reached}", suites[image.split()[-1]], str(root), str(sources)],
        check=True,
    )
    reached.unlink()
    shutil.copy("/etc/resolv.conf", root / "etc/resolv.conf")
    shutil.copy("/etc/hosts", root / "etc/hosts")


def _make(root: Path, instructions: list[tuple[str, str]]) -> None:
    """Takes every step."""
    folder = "/"
    for word, rest in instructions:
        print(f"container: {word} {rest}", file=sys.stderr, flush=True)
        if word == "FROM":
            _begin(root, rest)
        elif word == "COPY":
            source, target = rest.split()
            shutil.copy(_TREE / source, root / target.lstrip("/"))
        elif word == "RUN":
            if _inside(root, folder, ["sh", "-c", rest]) != 0:
                raise SystemExit(f"container: {rest} fails")
        elif word == "WORKDIR":
            folder = rest
            (root / folder.lstrip("/")).mkdir(parents=True)
        else:
            raise SystemExit(f"container: cannot do {word}")


def main() -> int:
    if len(sys.argv) < 3:
        raise SystemExit("usage: container.py FOLDER COMMAND [ARGUMENT...]")
    root = Path(sys.argv[1]).resolve()
    instructions = steps((_TREE / "Containerfile").read_text("utf-8"))
    folder = dict(instructions)["WORKDIR"]
    if not root.exists():
        _make(root, instructions)
        subprocess.run(["git", "clone", "--quiet", str(_TREE), str(root / folder.lstrip("/"))], check=True)
    return _inside(root, folder, sys.argv[2:])


if __name__ == "__main__":
    sys.exit(main())
