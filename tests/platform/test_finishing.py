"""The last step of the build marks what is weak and lets no library pass that would not load or would run wild."""

from __future__ import annotations

import struct
import unittest
from dataclasses import replace

from finish import faults, finished, mark_weak_imports
from header import PLACEHOLDER, complete_header
from image import Bind, Image, ImageError, UndefinedSymbol, read_image
from imports import Import, Library

_OLD = Library("/usr/lib/libOld.dylib", "1", "1", (Import("_old", True, False), Import("dyld_stub_binder", True, False)))
_YOUNG = Library("/usr/lib/libYoung.dylib", "1", "1", (Import("_young", False, True),))
_LIBRARIES = [_OLD, _YOUNG]

_GOOD = Image(
    data=bytes(8),
    run_paths=[(28, PLACEHOLDER)],
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

    def test_sections_filled_with_zeros_are_refused(self) -> None:
        self.assertEqual(self.found(zero_filled=["__DATA,__bss"]), ["__DATA,__bss is filled with zeros"])

    def test_a_library_that_hands_others_on_is_refused(self) -> None:
        self.assertEqual(self.found(reexported=["/usr/lib/libOld.dylib"]), ["/usr/lib/libOld.dylib is handed on"])

    def test_a_header_without_a_place_for_a_uuid_or_with_one_is_refused(self) -> None:
        for run_paths in ([], [(28, "@loader_path")], [(28, PLACEHOLDER), (52, "/usr/lib")]):
            self.assertEqual(self.found(run_paths=run_paths), ["there is no place for a UUID, or another run path"])
        self.assertEqual(self.found(has_uuid=True), ["there is a UUID already"])

    def test_only_the_flags_of_weak_symbols_change(self) -> None:
        data = bytearray(_GOOD.data)
        mark_weak_imports(_GOOD, _LIBRARIES, data)
        self.assertEqual(data, bytes([0, 0x01, 0, 0, 0, 0, 0x40, 0]))

    def test_a_file_that_is_no_i386_library_is_refused(self) -> None:
        with self.assertRaises(ImageError):
            read_image(b"\x7fELF" + bytes(60))


# A header of one load command that says nothing, the place for a UUID, and contents.
_COMMANDS = struct.pack("<2I36x", 0, 44) + struct.pack("<3I12s", 0x8000001C, 24, 12, PLACEHOLDER.encode())
_FILE = struct.pack("<7I", 0xFEEDFACE, 7, 3, 6, 2, len(_COMMANDS), 0x85) + _COMMANDS + b"contents"


class Header(unittest.TestCase):
    def completed(self, contents: bytes) -> bytes:
        image = read_image(contents)
        data = bytearray(contents)
        complete_header(image, data)
        return bytes(data)

    def test_the_uuid_takes_its_place_and_a_flag_is_set_and_nothing_else_changes(self) -> None:
        data = self.completed(_FILE)
        self.assertEqual(struct.unpack_from("<I", data, 24), (0x100085,))
        self.assertEqual(struct.unpack_from("<2I", data, 72), (0x1B, 24))
        self.assertEqual(data[:24] + _FILE[24:28] + data[28:72] + _FILE[72:96] + data[96:], _FILE)
        self.assertTrue(read_image(data).has_uuid)

    def test_the_same_contents_have_the_same_uuid_and_any_other_contents_another(self) -> None:
        uuids = [self.completed(_FILE)[80:96], self.completed(_FILE)[80:96]]
        self.assertEqual(uuids[0], uuids[1])
        for place in (24, 40, len(_FILE) - 1):
            other = bytearray(_FILE)
            other[place] ^= 0x02
            uuids.append(self.completed(bytes(other))[80:96])
        self.assertEqual(len(set(uuids)), 4)

    def test_the_uuid_knows_whether_an_import_is_weak(self) -> None:
        data = _FILE + bytes(8)
        at = len(_FILE)
        strong = replace(read_image(data), binds=[Bind("_old", 1, 1, at)])
        weak = replace(strong, binds=[Bind("_young", 2, 1, at)])
        self.assertNotEqual(finished(strong, _LIBRARIES)[80:96], finished(weak, _LIBRARIES)[80:96])


if __name__ == "__main__":
    unittest.main()
