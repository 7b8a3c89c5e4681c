"""The whole cross-build on small sources: what it makes, and that it stops where it cannot make it right."""

from __future__ import annotations

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

_TREE = Path(os.environ["SOURCE_TREE"])

_ENTRY = """\
#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>
#include <stdexcept>
extern const CFStringRef *const table[];
extern const char *names[];
extern "C" __attribute__((visibility("default"))) void REALPluginMain(void *(*resolver)(const char *)) {
    try {
        resolver("x");
        resolver(names[resolver(names[0]) ? 1 : 0]);
        CFRetain(*table[0]);
    } catch (const std::exception &) {
        CFRelease(CFSTR("text"));
    }
    if (&kMDItemGPSDOP) {
        CFRetain(kMDItemGPSDOP);
    }
}
"""

_TABLE = """\
#include <CoreServices/CoreServices.h>
extern const CFStringRef *const table[];
const CFStringRef *const table[] = {&kMDItemTitle, &kMDItemGPSDOP};
extern const char *names[];
const char *names[] = {"first", "second"};
"""


class CrossBuild(unittest.TestCase):
    tree: Path

    @classmethod
    def setUpClass(cls) -> None:
        """What is made of no source of the product, the stubs of the frameworks, is made once for all tests."""
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.tree = Path(folder.name, "tree")
        for part in ("platform", "cmake"):
            shutil.copytree(_TREE / part, cls.tree / part)
        for part in ("CMakeLists.txt", "CMakePresets.json"):
            shutil.copy(_TREE / part, cls.tree)

    def setUp(self) -> None:
        for folder in ("plugin", "dist"):
            shutil.rmtree(self.tree / folder, ignore_errors=True)
        (self.tree / "plugin").mkdir()
        shutil.copy(_TREE / "plugin" / "Info.plist.in", self.tree / "plugin")
        self.library = self.tree / "dist" / "Spotlight.dylib"

    def build(self, **sources: str) -> subprocess.CompletedProcess[str]:
        """Builds these sources in place of the product's."""
        for name, text in sources.items():
            (self.tree / "plugin" / f"{name}.cpp").write_text(text, "utf-8")
        subprocess.run(["cmake", "--preset", "macho"], cwd=self.tree, check=True, capture_output=True)
        return subprocess.run(["ninja", "-C", "build/macho"], cwd=self.tree, capture_output=True, text=True)

    def assert_stops(self, sentence: str, **sources: str) -> None:
        built = self.build(**sources)
        self.assertNotEqual(built.returncode, 0)
        self.assertIn(sentence, built.stdout + built.stderr)
        self.assertFalse(self.library.exists())

    def dump(self, *options: str) -> str:
        command = ["llvm-objdump-14", "--macho", *options, str(self.library)]
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout

    def test_every_pointer_to_an_import_is_bound_from_its_library(self) -> None:
        built = self.build(entry=_ENTRY, table=_TABLE)
        self.assertEqual(built.returncode, 0, built.stdout + built.stderr)
        binds = {tuple(line.split()[-2:]) for line in self.dump("--bind").splitlines() if "pointer" in line}
        self.assertLessEqual(
            {
                ("CoreFoundation", "_CFRetain"),
                ("CoreFoundation", "___CFConstantStringClassReference"),
                ("CoreServices", "_kMDItemTitle"),
                ("_kMDItemGPSDOP", "(weak_import)"),
                ("libstdc++", "__ZTISt9exception"),
                ("libstdc++", "___gxx_personality_v0"),
            },
            binds,
        )

    def test_a_table_of_pointers_is_rebased(self) -> None:
        self.assertEqual(self.build(entry=_ENTRY, table=_TABLE).returncode, 0)
        rebased = self.dump("--rebase").splitlines()
        self.assertEqual(sum(line.startswith(("__DATA   __data", "__DATA   __const")) for line in rebased), 2)

    def test_a_symbol_on_no_list_stops_the_build(self) -> None:
        call = 'resolver(strchr(static_cast<const char *>(resolver("x")), 1));'
        entry = "#include <string.h>\n" + _ENTRY.replace('resolver("x");', call)
        self.assert_stops("Spotlight.o needs _strchr, which is on no list in platform/imports", entry=entry, table=_TABLE)

    def test_a_static_that_needs_an_initialiser_stops_the_build(self) -> None:
        table = _TABLE + "static CFTypeID initialised = CFStringGetTypeID();\nCFTypeID other() { return initialised; }\n"
        self.assert_stops("declaration requires a global constructor", entry=_ENTRY, table=table)

    def test_a_missing_entry_point_stops_the_build(self) -> None:
        self.assert_stops("_REALPluginMain", table=_TABLE)


if __name__ == "__main__":
    unittest.main()
