"""What the object files leave open is settled from the lists, and what is on no list stops the build by name."""

from __future__ import annotations

import unittest

from imports import Import
from thunks import OpenSymbolError, called_imports, parse_symbols, thunks

_IMPORTS = {
    "_CFRelease": Import("_CFRelease", True, False),
    "_kOld": Import("_kOld", False, False),
    "_kYoung": Import("_kYoung", False, True),
    "_young": Import("_young", True, True),
}


class Thunks(unittest.TestCase):
    def called(self, *lines: str) -> list[str]:
        return called_imports(parse_symbols("\n".join(lines)), _IMPORTS)

    def assert_refused(self, sentence: str, *lines: str) -> None:
        with self.assertRaisesRegex(OpenSymbolError, sentence):
            self.called(*lines)

    def test_each_called_import_gets_one_thunk(self) -> None:
        names = self.called(
            "x/a.o:          (undefined) external _thunk$_CFRelease",
            "x/b.o:          (undefined) external _thunk$_CFRelease",
            "x/b.o:          (undefined) external _kOld",
        )
        self.assertEqual(names, ["_CFRelease"])

    def test_what_another_file_defines_needs_nothing(self) -> None:
        names = self.called(
            "a.o:          (undefined) external _helper",
            "b.o: 00000000 (__TEXT,__text) private external _helper",
        )
        self.assertEqual(names, [])

    def test_a_symbol_on_no_list_is_refused_with_the_file_that_needs_it(self) -> None:
        self.assert_refused("a.o needs _strchr, which is on no list", "x/a.o:   (undefined) external _strchr")

    def test_calling_data_is_refused(self) -> None:
        self.assert_refused("a.o calls _kOld, which is listed as data", "a.o:   (undefined) external _thunk$_kOld")

    def test_a_young_symbol_that_the_source_takes_for_granted_is_refused(self) -> None:
        self.assert_refused("listed as weak, but the name is not declared weak", "a.o:  (undefined) external _kYoung")

    def test_a_young_symbol_that_the_source_declares_weak_is_accepted(self) -> None:
        self.assertEqual(self.called("a.o:          (undefined) weak external _kYoung"), [])

    def test_a_symbol_of_every_system_that_the_source_declares_weak_is_refused(self) -> None:
        self.assert_refused("_kOld, listed as always there, but", "a.o:    (undefined) weak external _kOld")

    def test_calling_a_young_function_is_refused(self) -> None:
        self.assert_refused("weak functions are called", "a.o:          (undefined) external _thunk$_young")

    def test_a_thunk_jumps_through_a_pointer_of_its_own_and_names_no_absolute_address(self) -> None:
        text = thunks(["_CFRelease", "_CFRetain"])
        for name, label in (("_CFRelease", "L0$pb"), ("_CFRetain", "L1$pb")):
            self.assertIn(f"_thunk${name}:\n\tcalll\t{label}\n{label}:\n\tpopl\t%eax\n", text)
            self.assertIn(f"\tjmpl\t*_ptr${name}-{label}(%eax)\n", text)
            self.assertIn(f"_ptr${name}:\n\t.long\t{name}\n", text)


if __name__ == "__main__":
    unittest.main()
