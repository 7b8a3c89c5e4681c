"""The kept inputs: packed so that nothing is lost, and the same inputs in the same bytes."""

from __future__ import annotations

import tempfile
import unittest
from pathlib import Path

import corpus

_INPUTS = [b"", b"one", b"\0\xff" * 600, b"one"]


class Corpus(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def test_what_was_packed_comes_out_again_each_input_once(self) -> None:
        corpus.pack(_INPUTS, self.folder / "packed.tar.xz")
        self.assertEqual(corpus.unpack(self.folder / "packed.tar.xz", self.folder / "out"), 3)
        self.assertEqual({path.read_bytes() for path in (self.folder / "out").iterdir()}, set(_INPUTS))

    def test_the_order_of_the_inputs_does_not_change_the_pack(self) -> None:
        corpus.pack(_INPUTS, self.folder / "one.tar.xz")
        corpus.pack(_INPUTS[::-1], self.folder / "other.tar.xz")
        self.assertEqual((self.folder / "one.tar.xz").read_bytes(), (self.folder / "other.tar.xz").read_bytes())

    def test_each_target_has_named_inputs_and_a_pack_that_holds_none_of_them(self) -> None:
        names = {path.name.removesuffix(".tar.xz") for path in corpus.CORPUS.iterdir()}
        for name in names:
            named = {path.read_bytes() for path in (corpus.CORPUS / name).iterdir()}
            self.assertTrue(named)
            self.assertGreater(corpus.unpack(corpus.CORPUS / f"{name}.tar.xz", self.folder / name), 0)
            self.assertEqual(named & {path.read_bytes() for path in (self.folder / name).iterdir()}, set())


if __name__ == "__main__":
    unittest.main()
