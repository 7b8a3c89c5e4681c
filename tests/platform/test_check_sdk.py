"""./dev check-sdk compiles the product with the headers of the folder it is given, and with no others."""

from __future__ import annotations

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

import made_up_sdk

_TREE = Path(os.environ["SOURCE_TREE"])
_LIBCXX = Path("/usr/lib/llvm-14/include/c++/v1")


class CheckSdk(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.sdk = Path(folder.name, "an SDK")

    def lay_out(self, frameworks: str, include: str) -> None:
        """Arranges the headers of this tree below these two folders."""
        self.frameworks = self.sdk / frameworks
        made_up_sdk.lay_out(_TREE, self.sdk, frameworks, include)

    def check(self, *arguments: str) -> subprocess.CompletedProcess[str]:
        command = [str(_TREE / "dev"), "check-sdk", *arguments]
        return subprocess.run(command, cwd=self.sdk.parent, capture_output=True, text=True)

    def test_a_folder_with_frameworks_and_include_is_accepted(self) -> None:
        self.lay_out("Frameworks", "include")
        checked = self.check(str(self.sdk))
        self.assertEqual(checked.returncode, 0, checked.stderr)

    def test_the_usual_layout_is_accepted_and_the_cxx_headers_in_it_are_used(self) -> None:
        self.lay_out("System/Library/Frameworks", "usr/include")
        cxx = self.sdk / "usr" / "include" / "c++" / "v1"
        cxx.mkdir(parents=True)
        for header in _LIBCXX.iterdir():
            if header.name != "__config_site":
                (cxx / header.name).symlink_to(header)
        site = (_LIBCXX / "__config_site").read_text("utf-8")
        for missing in ("THREADS", "LOCALIZATION", "WIDE_CHARACTERS"):
            site = site.replace(f"/* #undef _LIBCPP_HAS_NO_{missing} */", f"#define _LIBCPP_HAS_NO_{missing}")
        (cxx / "__config_site").write_text(site, "utf-8")
        checked = self.check("an SDK")
        self.assertEqual(checked.returncode, 0, checked.stderr)
        (cxx / "new").unlink()
        (cxx / "new").write_text("#error the SDK's own <new>\n", "utf-8")
        checked = self.check("an SDK")
        self.assertEqual(checked.returncode, 1)
        self.assertIn("the SDK's own <new>", checked.stderr)

    def test_a_function_that_the_sdk_declares_otherwise_is_found(self) -> None:
        self.lay_out("Frameworks", "include")
        header = self.frameworks / "CoreServices.framework" / "Headers" / "MDQuery.h"
        text = header.read_text("utf-8")
        declaration = "void MDQueryStop(MDQueryRef query);"
        self.assertIn(declaration, text)
        header.write_text(text.replace(declaration, "void MDQueryStop(MDQueryRef query, Boolean now);"), "utf-8")
        checked = self.check(str(self.sdk))
        self.assertEqual(checked.returncode, 1)
        self.assertIn("MDQueryStop", checked.stderr)

    def test_the_headers_of_this_tree_do_not_fill_a_gap(self) -> None:
        self.lay_out("Frameworks", "include")
        shutil.rmtree(self.frameworks / "Carbon.framework")
        checked = self.check(str(self.sdk))
        self.assertEqual(checked.returncode, 1)
        self.assertIn("'Carbon/Carbon.h' file not found", checked.stderr)

    def test_a_folder_that_is_no_sdk_is_refused(self) -> None:
        self.sdk.mkdir()
        self.assertEqual(self.check(str(self.sdk)).returncode, 2)
        self.assertEqual(self.check(str(self.sdk / "nothing")).returncode, 2)
        self.assertEqual(self.check().returncode, 2)


if __name__ == "__main__":
    unittest.main()
