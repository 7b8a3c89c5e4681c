"""The compiler's assembly is rewritten where the linker would get it wrong, and only there."""

from __future__ import annotations

import unittest

from imports import Import
from rewrite import RewriteError, rewrite

_IMPORTS = {name: Import(name, name != "_kData", False) for name in ("_CFRetain", "_CFRelease", "_kData")}


class Rewriting(unittest.TestCase):
    def assert_rewritten(self, before: str, after: str) -> None:
        self.assertEqual(rewrite(before, _IMPORTS), after)

    def test_non_lazy_pointers_become_words_in_the_data_section_with_labels_of_their_own(self) -> None:
        self.assert_rewritten(
            "\t.section\t__IMPORT,__pointers,non_lazy_symbol_pointers\n"
            "L_kData$non_lazy_ptr:\n\t.indirect_symbol\t_kData\n\t.long\t0\n"
            "L__ZTISt9exception$non_lazy_ptr:\n\t.indirect_symbol\t__ZTISt9exception\n\t.long\t0\n",
            "\t.section\t__DATA,__data\n"
            "\t.p2align\t2\n_ptr$_kData:\n\t.long\t_kData\n"
            "\t.p2align\t2\n_ptr$__ZTISt9exception:\n\t.long\t__ZTISt9exception\n",
        )

    def test_uses_of_a_pointer_follow_its_new_name(self) -> None:
        self.assert_rewritten(
            "\tmovl\tL_kData$non_lazy_ptr-L0$pb(%esi), %eax\n"
            "\t.cfi_personality 155, L___gxx_personality_v0$non_lazy_ptr\n"
            "\t.long\tL__ZTISt9exception$non_lazy_ptr-(.)\n",
            "\tmovl\t_ptr$_kData-L0$pb(%esi), %eax\n"
            "\t.cfi_personality 155, _ptr$___gxx_personality_v0\n"
            "\t.long\t_ptr$__ZTISt9exception-(.)\n",
        )

    def test_calls_and_jumps_to_imports_go_through_thunks(self) -> None:
        self.assert_rewritten(
            "\tcalll\t_CFRetain\n\tjmp\t_CFRelease                      ## TAILCALL\n\tjne\t_CFRelease\n",
            "\tcalll\t_thunk$_CFRetain\n\tjmp\t_thunk$_CFRelease                      ## TAILCALL\n"
            "\tjne\t_thunk$_CFRelease\n",
        )

    def test_calls_of_own_functions_and_jumps_inside_a_function_stay(self) -> None:
        same = "\tcalll\t_CFRetainTwice\n\tjmp\tLBB0_1\n\tcalll\t*8(%ebp)\n\tcalll\tL0$pb\n"
        self.assert_rewritten(same, same)

    def test_addresses_of_imports_in_data_stay_for_the_linker_to_bind(self) -> None:
        same = "\t.section\t__DATA,__const\n_table:\n\t.long\t_CFRelease\n\t.long\t_kData\n"
        self.assert_rewritten(same, same)

    def test_an_instruction_that_names_an_import_itself_is_refused(self) -> None:
        for instruction in ("movl\t_kData, %eax", "movl\t$_CFRelease, (%esp)", "pushl\t_kData"):
            with self.assertRaisesRegex(RewriteError, "an instruction names the import"):
                rewrite(f"\t{instruction}\n", _IMPORTS)

    def test_a_name_in_a_comment_is_no_use_of_it(self) -> None:
        same = "\tmovl\t%eax, %ecx                      ## calls _CFRelease\n"
        self.assert_rewritten(same, same)

    def test_a_pointer_in_an_unknown_form_is_refused(self) -> None:
        with self.assertRaisesRegex(RewriteError, "indirect_symbol"):
            rewrite("L_kData$non_lazy_ptr:\n\t.indirect_symbol\t_kData\n\t.long\t4\n", _IMPORTS)

    def test_code_that_would_run_before_the_entry_point_is_refused(self) -> None:
        with self.assertRaisesRegex(RewriteError, "__mod_init_func"):
            rewrite("\t.section\t__DATA,__mod_init_func,mod_init_funcs\n\t.long\t_init\n", _IMPORTS)


if __name__ == "__main__":
    unittest.main()
