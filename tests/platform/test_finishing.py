"""The last step of the build marks what is weak and lets no library pass that would not load or would run wild."""

from __future__ import annotations

import unittest
from dataclasses import replace

from finish import faults, with_weak_imports
from image import Bind, Image, ImageError, UndefinedSymbol, read_image
from imports import Import, Library

_OLD = Library("/usr/lib/libOld.dylib", "1", "1", (Import("_old", True, False), Import("dyld_stub_binder", True, False)))
_YOUNG = Library("/usr/lib/libYoung.dylib", "1", "1", (Import("_young", False, True),))
_LIBRARIES = [_OLD, _YOUNG]

_GOOD = Image(
    data=bytes(8),
    segments=["__TEXT", "__DATA"],
    sections=["__TEXT,__text", "__DATA,__data"],
    libraries=["/usr/lib/libOld.dylib", "/usr/lib/libYoung.dylib"],
    undefined=[UndefinedSymbol("_old", 1, 4), UndefinedSymbol("_young", 2, 6), UndefinedSymbol("dyld_stub_binder", 1, 7)],
    binds=[Bind("_old", 1, 1, 0), Bind("_young", 2, 1, 1)],
    rebased_segments={"__DATA"},
    exports=["_entry"],
)


class Finishing(unittest.TestCase):
    def found(self, **changes: object) -> list[str]:
        return faults(replace(_GOOD, **changes), _LIBRARIES, "_entry")

    def test_a_good_library_has_no_faults(self) -> None:
        self.assertEqual(self.found(), [])

    def test_absolute_stubs_are_refused(self) -> None:
        self.assertEqual(self.found(sections=["__TEXT,__stubs"]), ["there is a section __TEXT,__stubs"])

    def test_initialisers_are_refused(self) -> None:
        self.assertEqual(len(self.found(sections=["__DATA,__mod_init_func"])), 1)

    def test_a_second_export_is_refused(self) -> None:
        self.assertEqual(self.found(exports=["_entry", "_other"]), ["the exports are ['_entry', '_other']"])

    def test_no_export_is_refused(self) -> None:
        self.assertEqual(self.found(exports=[]), ["the exports are []"])

    def test_an_import_without_a_bind_is_refused(self) -> None:
        self.assertEqual(self.found(binds=[Bind("_young", 2, 1, 1)]), ["_old is never bound"])

    def test_a_bind_from_another_library_than_the_lists_say_is_refused(self) -> None:
        found = self.found(binds=[Bind("_old", 2, 1, 0), Bind("_young", 2, 1, 1)])
        self.assertEqual(found, ["_old is bound from /usr/lib/libYoung.dylib, and the lists say /usr/lib/libOld.dylib"])

    def test_a_bind_that_leaves_the_library_open_is_refused(self) -> None:
        self.assertEqual(len(self.found(binds=[Bind("_old", 0, 1, 0), Bind("_young", 2, 1, 1)])), 1)

    def test_addresses_in_the_code_that_the_loader_would_have_to_write_are_refused(self) -> None:
        self.assertEqual(len(self.found(rebased_segments={"__TEXT"})), 1)
        self.assertEqual(len(self.found(binds=[Bind("_old", 1, 0, 0), Bind("_young", 2, 1, 1)])), 1)

    def test_lazy_binds_are_refused(self) -> None:
        self.assertEqual(self.found(lazy_bind_size=12), ["there are lazy binds"])

    def test_only_the_flags_of_weak_symbols_change(self) -> None:
        data = with_weak_imports(_GOOD, _LIBRARIES)
        self.assertEqual(data, bytes([0, 0x01, 0, 0, 0, 0, 0x40, 0]))

    def test_a_file_that_is_no_i386_library_is_refused(self) -> None:
        with self.assertRaises(ImageError):
            read_image(b"\x7fELF" + bytes(60))


if __name__ == "__main__":
    unittest.main()
