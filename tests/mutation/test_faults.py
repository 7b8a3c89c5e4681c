"""The faults that are made of a small source: each kind once, where it belongs, and none where it does not."""

from __future__ import annotations

import tempfile
import textwrap
import unittest
from pathlib import Path

from faults import ChangedLines, Fault
from finding import faults_of, find_faults, users
from syntax import read_source

_FLAGS = ["-std=c++20", "-m32"]


class MadeUpTree(unittest.TestCase):
    tree: Path

    def setUp(self) -> None:
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.tree = Path(temporary.name).resolve()
        for room in ("plugin", "host", "convert", "spotlight"):
            (self.tree / room).mkdir()

    def write(self, file: str, source: str) -> None:
        (self.tree / file).write_text(textwrap.dedent(source), "utf-8")

    def faults(self, source: str, file: str = "host/small.cpp") -> list[Fault]:
        self.write(file, source)
        return list(faults_of(read_source(self.tree, file, file, _FLAGS)))

    def changes(self, source: str, kind: str) -> set[tuple[str, str]]:
        """What goes and what comes with each fault of a kind."""
        found = set()
        for fault in self.faults(source):
            if fault.kind == kind:
                lines = fault.changed_lines(self.tree)
                found.add((" ".join(lines.gone), " ".join(lines.come)))
        return found


class StatementsAndConditions(MadeUpTree):
    def test_a_call_can_be_left_out_and_neighbours_can_be_swapped(self) -> None:
        source = """\
            void first();
            void second();
            void both() {
                first();
                second();
            }
            """
        self.assertEqual(self.changes(source, "statement left out"), {("first();", ";"), ("second();", ";")})
        swapped = self.changes(source, "neighbours swapped")
        self.assertEqual(len(swapped), 1)

    def test_variables_may_be_written_in_any_order_but_not_behind_a_release(self) -> None:
        source = """\
            void CFRelease(int *what);
            void clear(int *&one, int *&other) {
                one = nullptr;
                other = nullptr;
                CFRelease(one);
            }
            """
        swapped = self.changes(source, "neighbours swapped")
        self.assertEqual(swapped, {("other = nullptr; CFRelease(one);", "CFRelease(one); other = nullptr;")})

    def test_what_another_statement_needs_is_neither_left_out_nor_moved_behind_it(self) -> None:
        source = """\
            int ask();
            void tell(int what);
            void both() {
                const int answer = ask();
                tell(answer);
            }
            """
        self.assertEqual(self.changes(source, "statement left out"), {("tell(answer);", ";")})
        self.assertEqual(self.changes(source, "neighbours swapped"), set())

    def test_a_constant_that_lasts_may_stand_anywhere(self) -> None:
        source = """\
            struct Cell { constexpr Cell(int what) : what(what) {} int what; };
            void tell(int what);
            void both() {
                tell(1);
                static constexpr Cell cell{2};
                tell(cell.what);
            }
            """
        self.assertEqual(self.changes(source, "neighbours swapped"), set())

    def test_the_last_return_of_a_function_stays(self) -> None:
        self.assertEqual(self.changes("int answer() { return 42; }\n", "statement left out"), set())

    def test_a_check_can_be_left_out_and_its_condition_turned_round(self) -> None:
        source = """\
            int read(int *word) {
                if (!word)
                    return 0;
                return *word;
            }
            """
        self.assertEqual(self.changes(source, "check left out"), {("if (!word) return 0;", ";")})
        self.assertEqual(self.changes(source, "condition negated"), {("if (!word)", "if (word)")})

    def test_of_two_values_either_can_be_taken_unasked(self) -> None:
        source = "int choose(bool first, int one, int two) { return first ? one : two; }\n"
        line = source.strip()
        self.assertEqual(
            self.changes(source, "check gone"),
            {(line, line.replace("first ? one : two", "(one)")), (line, line.replace("first ? one : two", "(two)"))},
        )

    def test_parts_of_a_condition_can_go_and_bounds_can_move(self) -> None:
        source = "bool inside(int place, int size) { return place >= 0 && place < size; }\n"
        said = [after.split("return ")[1] for _, after in self.changes(source, "part of a condition left out")]
        self.assertEqual(sorted(said), ["place < size; }", "place >= 0; }"])
        said = [after.split("return ")[1] for _, after in self.changes(source, "bound moved")]
        self.assertEqual(sorted(said), ["place > 0 && place < size; }", "place >= 0 && place <= size; }"])


class Values(MadeUpTree):
    def test_a_number_becomes_one_more_or_one_less(self) -> None:
        source = "constexpr int kMost = 0x10;\n"
        self.assertEqual(
            self.changes(source, "constant changed"),
            {("constexpr int kMost = 0x10;", f"constexpr int kMost = {other};") for other in ("0x11", "0xF")},
        )

    def test_a_text_is_emptied(self) -> None:
        source = 'const char *Name() { return "name"; }\n'
        self.assertEqual(
            self.changes(source, "literal emptied"), {(source.strip(), source.strip().replace('"name"', '""'))}
        )

    def test_another_constant_of_an_enumeration_comes_in_the_place_of_one(self) -> None:
        source = """\
            enum Kind { kFirst, kSecond };
            Kind Usual() { return kFirst; }
            """
        self.assertIn(
            ("Kind Usual() { return kFirst; }", "Kind Usual() { return kSecond; }"),
            self.changes(source, "constant changed"),
        )

    def test_arguments_of_one_type_are_swapped_or_replaced(self) -> None:
        source = """\
            void put(int place, int value, bool now);
            void both(int left, int right, bool now) { put(left, right, now); }
            """
        swapped = [after.split("{ ")[1] for _, after in self.changes(source, "arguments swapped")]
        self.assertEqual(swapped, ["put(right, left, now); }"])
        replaced = [after.split("{ ")[1] for _, after in self.changes(source, "another argument")]
        self.assertEqual(sorted(replaced), ["put(left, left, now); }", "put(right, right, now); }"])

    def test_arguments_whose_order_is_all_the_same_stay(self) -> None:
        source = "extern int max(int, int);\nint both(int left, int right) { return max(left, right); }\n"
        self.assertEqual(self.changes(source, "arguments swapped"), set())

    def test_rows_of_a_table_are_left_out(self) -> None:
        source = "constexpr const char *kWords[] = {kA, kB, kC};\n"
        source = 'constexpr const char *kA = "a", *kB = "b", *kC = "c";\n' + source
        self.assertEqual(len(self.changes(source, "row left out")), 2)


class Lifetimes(MadeUpTree):
    def test_a_reference_is_not_added_or_is_given_up_twice(self) -> None:
        source = """\
            struct Holder { int *Give(); int *Get(); };
            Holder Hold(int *what);
            int *keep(int *what) { return Hold(what).Give(); }
            """
        line = "int *keep(int *what) { return Hold(what).Give(); }"
        self.assertEqual(
            self.changes(source, "reference not added"), {(line, line.replace("Hold(what)", "AdoptHost(what)"))}
        )
        self.assertEqual(
            self.changes(source, "given up though handed on"), {(line, line.replace("Give()", "Get()"))}
        )

    def test_an_answer_or_a_global_is_remembered(self) -> None:
        source = """\
            extern double age;
            bool ask(int what);
            bool both(int what) { return ask(what) && age > 1; }
            """
        line = "bool both(int what) { return ask(what) && age > 1; }"
        self.assertEqual(
            self.changes(source, "result remembered"),
            {(line, line.replace("ask(what)", "[&] { static auto known = ask(what); return known; }()"))},
        )
        self.assertEqual(
            self.changes(source, "value remembered"),
            {(line, line.replace("age", "[&] { static auto known = age; return known; }()"))},
        )


    def test_a_constant_text_is_always_the_same(self) -> None:
        source = """\
            const int *Make(const char *);
            #define CFSTR(text) Make(text)
            const int *Name() { return CFSTR("name"); }
            """
        self.assertEqual(self.changes(source, "result remembered"), set())

    def test_the_identifier_of_a_type_is_always_the_same_and_that_of_a_value_is_not(self) -> None:
        source = """            unsigned long CFDateGetTypeID();
            unsigned long CFGetTypeID(const void *);
            bool IsDate(const void *value) { return CFGetTypeID(value) == CFDateGetTypeID(); }
            """
        ((_, come),) = self.changes(source, "result remembered")
        self.assertIn("known = CFGetTypeID(value)", come)


class Files(MadeUpTree):
    def test_a_header_is_part_of_every_source_that_includes_it_by_whatever_way(self) -> None:
        self.write("host/inner.h", "inline int Inner() { return 1; }\n")
        self.write("host/outer.h", '#include "host/inner.h"\n')
        self.write("plugin/one.cpp", '#include "host/outer.h"\nint One() { return Inner(); }\n')
        self.write("plugin/two.cpp", "int Two() { return 2; }\n")
        self.assertEqual(users(self.tree)["host/inner.h"], ["plugin/one.cpp"])
        flags = [*_FLAGS, "-I", str(self.tree)]
        found = find_faults(self.tree, ["host/inner.h"], flags)
        self.assertEqual({fault.file for fault in found}, {"host/inner.h"})
        self.assertIn(b"return 2;", found[0].applied(self.tree))

    def test_a_fault_knows_its_line_and_the_function_around_it(self) -> None:
        fault = next(one for one in self.faults("\nint answer() {\n    return 41 + 1;\n}\n") if one.text == "42")
        self.assertEqual((fault.line, fault.function, fault.room), (3, (2, 4), "host"))
        self.assertEqual((fault.function_name, fault.variable), ("answer", ""))

    def test_a_fault_in_a_lambda_is_in_the_function_around_it(self) -> None:
        found = self.faults("int answer() { return [] { return 41; }(); }\n")
        self.assertEqual({fault.function_name for fault in found}, {"answer"})

    def test_a_fault_in_data_knows_the_variable_unless_the_compiler_reckons_with_it(self) -> None:
        self.assertEqual({fault.variable for fault in self.faults("int answer = 41;\n")}, {"answer"})
        self.assertEqual({fault.variable for fault in self.faults("constexpr int answer = 41;\n")}, {""})

    def test_a_fault_is_named_by_its_lines_wherever_they_are(self) -> None:
        source = "int answer() { return 41; }\n"
        named = {fault.changed_lines(self.tree) for fault in self.faults(source)}
        moved = {fault.changed_lines(self.tree) for fault in self.faults("// a line\n\n" + source)}
        self.assertEqual(named, moved)
        self.assertIn(
            ChangedLines("host/small.cpp", ("int answer() { return 41; }",), ("int answer() { return 42; }",)), named
        )

    def test_what_the_compiler_checks_is_no_place_for_a_fault(self) -> None:
        self.assertEqual(self.faults("static_assert(sizeof(int) == 4);\n"), [])


if __name__ == "__main__":
    unittest.main()
