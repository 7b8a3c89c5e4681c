"""The finished library is what a 32-bit Intel Mac loads: what it exports, imports and embeds, as other tools see it."""

from __future__ import annotations

import os
import re
import subprocess
import unittest
from pathlib import Path

import dump

_TREE = Path(os.environ["SOURCE_TREE"])
_LIBRARY = Path(os.environ["DYLIB"])
_GOLDEN = Path("Spotlight.dylib.txt")

# Where each library of the lists is found in a real system, by the name under which the dump shows it.
_PATHS = {
    "CoreFoundation": "/System/Library/Frameworks/CoreFoundation.framework/Versions/A/CoreFoundation",
    "CoreServices": "/System/Library/Frameworks/CoreServices.framework/Versions/A/CoreServices",
    "ApplicationServices": "/System/Library/Frameworks/ApplicationServices.framework/Versions/A/ApplicationServices",
    "Carbon": "/System/Library/Frameworks/Carbon.framework/Versions/A/Carbon",
    "libSystem": "/usr/lib/libSystem.B.dylib",
    "libstdc++": "/usr/lib/libstdc++.6.dylib",
}


def _tool(*command: str) -> str:
    return subprocess.run([*command, str(_LIBRARY)], check=True, capture_output=True, text=True).stdout


def _listed() -> dict[str, dict[str, bool]]:
    """Of each library, the symbols of its list and whether they are weak."""
    found = {}
    for name in _PATHS:
        text = (_TREE / "platform" / "imports" / f"{name}.txt").read_text("utf-8")
        symbols = re.findall(r"^(?:function|data) +(\S+)( +weak since 10\.\d+)?$", text, re.MULTILINE)
        found[name] = {symbol: weak != "" for symbol, weak in symbols}
    return found


class FinishedLibrary(unittest.TestCase):
    maxDiff = None

    def test_it_is_an_i386_mach_o_library(self) -> None:
        self.assertIn("Mach-O i386 dynamically linked shared library", _tool("file"))

    def test_its_only_export_is_the_entry_point(self) -> None:
        self.assertEqual(dump.exports(_LIBRARY), ["_REALPluginMain"])
        defined = _tool("llvm-nm-14", "--extern-only", "--defined-only", "--format=just-symbols")
        self.assertEqual(defined.split(), ["_REALPluginMain"])

    def test_it_has_no_absolute_stubs_and_no_initialisers(self) -> None:
        names = {line.split()[0].split(",")[1] for line in dump.sections(_LIBRARY)}
        self.assertIn("__text", names)
        self.assertEqual(names & {"__stubs", "__symbol_stub", "__jump_table", "__pointers", "__mod_init_func"}, set())

    def test_every_undefined_symbol_is_bound(self) -> None:
        undefined = set(_tool("llvm-nm-14", "--undefined-only", "--format=just-symbols").split())
        bound = {entry.symbol for entry in dump.bound_imports(_LIBRARY)}
        self.assertEqual(undefined - {"dyld_stub_binder"}, bound)

    def test_every_import_comes_from_the_library_that_provides_it(self) -> None:
        listed = _listed()
        strangers = [entry for entry in dump.bound_imports(_LIBRARY) if entry.symbol not in listed[entry.library]]
        self.assertEqual(strangers, [])

    def test_exactly_the_imports_younger_than_the_oldest_system_are_weak(self) -> None:
        listed = _listed()
        imports = dump.bound_imports(_LIBRARY)
        weak = {entry.symbol for entry in imports if entry.is_weak}
        self.assertEqual(weak, {entry.symbol for entry in imports if listed[entry.library][entry.symbol]})
        in_symbol_table = re.findall(r"\(undefined\) weak external (\S+)", _tool("llvm-nm-14", "-m", "-u"))
        self.assertEqual(weak, set(in_symbol_table))
        self.assertTrue(weak)

    def test_every_import_of_a_list_that_has_weak_ones_is_really_younger(self) -> None:
        for name in _PATHS:
            text = (_TREE / "platform" / "imports" / f"{name}.txt").read_text("utf-8")
            for since in re.findall(r"weak since 10\.(\d+)", text):
                self.assertGreater(int(since), 6)

    def test_it_loads_the_libraries_by_the_paths_that_every_system_has(self) -> None:
        loaded = [line.split(" (")[0] for line in dump.libraries(_LIBRARY)[1:]]
        self.assertEqual(sorted(loaded), sorted(_PATHS.values()))

    def test_nothing_in_the_code_has_to_be_written_by_the_loader(self) -> None:
        for option in ("--bind", "--rebase"):
            rows = [line for line in dump.objdump(_LIBRARY, option).splitlines() if line.startswith("__")]
            self.assertTrue(rows)
            self.assertEqual([line for line in rows if not line.startswith("__DATA")], [])

    def test_it_embeds_the_property_list_of_version_15_5(self) -> None:
        properties = dump.property_list(_LIBRARY)
        self.assertEqual(properties["CFBundleVersion"], "15.5")
        self.assertEqual(properties["CFBundleShortVersionString"], "15.5")
        self.assertEqual(properties["CFBundleDevelopmentRegion"], "English")
        self.assertEqual(properties["CFBundleInfoDictionaryVersion"], "6.0")
        self.assertEqual(properties["CFBundleSignature"], "????")
        self.assertEqual(properties["CFBundleName"], "Spotlight")
        self.assertRegex(properties["CFBundleIdentifier"], r"^[\w-]+(\.[\w-]+)+$")
        self.assertRegex(properties["CFBundleGetInfoString"], r"15\.5.*Spotlight.*MacOSX.*\d+")
        self.assertTrue(properties["NSHumanReadableCopyright"])

    def test_its_source_version_is_15_5(self) -> None:
        self.assertIn("LC_SOURCE_VERSION 15.5", dump.load_commands(_LIBRARY))

    def test_it_says_that_it_hands_no_other_library_on(self) -> None:
        # The platform's linker takes no library of this age without the flag.
        self.assertIn("NO_REEXPORTED_DYLIBS", dump.header_flags(_LIBRARY))
        self.assertNotIn("LC_REEXPORT_DYLIB", dump.load_commands(_LIBRARY))

    def test_it_has_a_uuid(self) -> None:
        self.assertRegex(dump.uuid(_LIBRARY), r"^[0-9A-F]{8}-[0-9A-F]{4}-5[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}$")

    def test_sections_filled_with_zeros_come_last_in_their_segment(self) -> None:
        kinds: dict[str, list[bool]] = {}
        for line in dump.sections(_LIBRARY):
            kinds.setdefault(line.split(",")[0], []).append("ZEROFILL" in line)
        for filled in kinds.values():
            self.assertEqual(filled, sorted(filled))

    def test_it_runs_on_the_oldest_system(self) -> None:
        self.assertIn("LC_VERSION_MIN_MACOSX 10.6 10.6", dump.load_commands(_LIBRARY))

    def test_it_holds_no_path_of_the_machine_that_built_it(self) -> None:
        for folder in (str(_TREE), "/home/", "/tmp/", "/usr/lib/llvm"):
            self.assertNotIn(folder.encode(), _LIBRARY.read_bytes())

    def test_what_can_be_seen_of_it_is_what_the_golden_file_says(self) -> None:
        command = f"tests/binary/dump.py dist/Spotlight.dylib >tests/binary/{_GOLDEN}"
        self.assertEqual(dump.dump(_LIBRARY), _GOLDEN.read_text("utf-8"), f"after a change that is meant: {command}")


if __name__ == "__main__":
    unittest.main()
