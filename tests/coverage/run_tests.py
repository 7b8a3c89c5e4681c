"""Runs the product's tests with the library, and the program, that count.

run_tests.py BUILD_FOLDER: makes of each test of the native library, and of each that looks inside the product, one that
counts, and runs them side by side. Each leaves its counts where LLVM_PROFILE_FILE says. Exits with 1 when one fails.
"""

from __future__ import annotations

import json
import os
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

_COUNTING = {"lib/Spotlight.so": "lib/Spotlight-counting.so", "bin/whitebox-tests": "bin/whitebox-tests-counting"}
# The first three look at the program's own output, at stack traces and at what the address sanitizer tells of the product;
# the last takes as long as all others, and reaches nothing that they do not.
_LEFT_OUT = ("cli ", "session ", "whitebox stack_buffers", "faults ")


def commands(build_folder: str, tests: list[dict]) -> dict[str, list[str]]:
    """By the name of the test, what is run in the place of its command. `tests` is what ctest says of them."""
    counting = {f"{build_folder}/{plain}": f"{build_folder}/{other}" for plain, other in _COUNTING.items()}
    return {
        test["name"]: [counting.get(word, word) for word in test["command"]]
        for test in tests
        if not test["name"].startswith(_LEFT_OUT) and any(word in counting for word in test.get("command", []))
    }


def _run(command: list[str]) -> subprocess.CompletedProcess[str]:
    return subprocess.run(
        command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False
    )


def main(build_folder: str) -> int:
    """Prints what a test that fails says, and how many there were."""
    listed = subprocess.run(
        ["ctest", "--test-dir", build_folder, "--show-only=json-v1"], stdout=subprocess.PIPE, check=True
    )
    wanted = commands(build_folder, json.loads(listed.stdout)["tests"])
    failed = 0
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for name, ran in zip(wanted, pool.map(_run, wanted.values())):
            if ran.returncode:
                failed += 1
                print(f"--- {name} fails:\n{ran.stdout}", file=sys.stderr)
    print(f"{len(wanted)} tests, {failed} failed", file=sys.stderr)
    return 1 if failed or not wanted else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
