// The language itself: values, operators, statements, routines and classes.
#include "tests/simulator/language/program_run.h"

#include <doctest/doctest.h>

using namespace tests;

namespace {

/// What an expression is as text.
std::string Text(const std::string &expression) {
    const std::string output = OutputOf("Print " + expression + "\n");
    return output.empty() ? "" : output.substr(0, output.size() - 1);
}

TEST_CASE("Operators bind as they do in the host language") {
    CHECK(Text("Str(1 + 2 * 3)") == "7");
    CHECK(Text("Str((1 + 2) * 3)") == "9");
    CHECK(Text("Str(-2 ^ 2)") == "-4");
    CHECK(Text("Str(2 ^ -1)") == "0.5");
    CHECK(Text("Str(7 \\ 2) + Str(7 Mod 2) + Str(7 / 2)") == "313.5");
    CHECK(Text("Str(10 - 4 - 3)") == "3");
    CHECK(OutputOf("If Not 1 = 2 And 3 > 2 Or False Then Print \"yes\"") == "yes\n");
    CHECK(OutputOf("If True Or False And False Then Print \"yes\"") == "yes\n");
    CHECK(OutputOf("If True Xor False Then Print \"yes\"") == "yes\n");
}

TEST_CASE("Whole numbers wrap around, and dividing them by zero raises") {
    CHECK(Text("Str(2147483647 + 1)") == "-2147483648");
    CHECK(Text("Str(2147483648 + 1)") == "2147483649");
    CHECK(Text("Str(&hFF) + Str(&b101) + Str(&o17)") == "255515");
    CHECK(OutputOf("Dim a As Integer = -2147483647 - 1\nPrint Str(a \\ -1) + \" \" + Str(a Mod -1)") ==
          "-2147483648 0\n");
    CHECK(RunProgram("Print Str(1 \\ 0)").message ==
          "program:1:11: RuntimeException: a whole number cannot be divided by zero");
    CHECK(Text("Str(1.5e3)") == "1500");
}

TEST_CASE("The right side of And and Or is looked at only where it matters") {
    CHECK(OutputOf("Dim d As Date\nIf d <> Nil And d.Year = 5 Then Print \"no\"\nIf d = Nil Or d.Year = 5 Then Print "
                   "\"yes\"") == "yes\n");
}

TEST_CASE("Texts are joined with + and compared without regard to case") {
    CHECK(Text("\"a\" + \"\"\"b\"\"\"") == "a\"b\"");
    CHECK(OutputOf("If \"Na\xC3\x8Fve\" = \"na\xC3\xAFVE\" Then Print \"same\"") == "same\n");
    CHECK(OutputOf("If \"a\" < \"B\" And \"b\" > \"A\" Then Print \"ordered\"") == "ordered\n");
    CHECK(Text("Str(StrComp(\"a\", \"A\", 0))") == "1");
}

TEST_CASE("Names ignore case, comments end lines, an underscore continues them") {
    CHECK(OutputOf("dim TOTAL as integer = 4 ' four\nREM nothing\nprint STR( _\n  total) // shown\n") == "4\n");
}

TEST_CASE("If, ElseIf and Else choose one block, on several lines or on one") {
    const std::string program = "For i As Integer = 1 To 3\nIf i = 1 Then\nPrint \"one\"\nElseIf i = 2 Then\nPrint "
                                "\"two\"\nElse\nPrint \"more\"\nEnd If\nNext\n";
    CHECK(OutputOf(program) == "one\ntwo\nmore\n");
    CHECK(OutputOf("If False Then Print \"a\" Else Print \"b\"") == "b\n");
}

TEST_CASE("For counts up, down, in steps, and stops before it would overflow") {
    CHECK(OutputOf("For i As Integer = 1 To 5 Step 2\nPrint Str(i)\nNext i") == "1\n3\n5\n");
    CHECK(OutputOf("For i As Integer = 2 DownTo 1\nPrint Str(i)\nNext") == "2\n1\n");
    CHECK(OutputOf("Dim x As Double\nFor x = 0.5 To 1.5 Step 0.5\nPrint Str(x)\nNext") == "0.5\n1\n1.5\n");
    CHECK(OutputOf("For i As Int64 = 9223372036854775806 To 9223372036854775807\nPrint Str(i)\nNext") ==
          "9223372036854775806\n9223372036854775807\n");
    CHECK(RunProgram("For i As Integer = 1 To 2 Step 0\nNext").message ==
          "program:1:1: RuntimeException: a loop that steps by zero never ends");
}

TEST_CASE("Loops can be left and continued, the innermost or the named one") {
    CHECK(OutputOf("For i As Integer = 1 To 9\nIf i = 2 Then Continue\nIf i = 4 Then Exit\nPrint Str(i)\nNext") ==
          "1\n3\n");
    CHECK(OutputOf("For i As Integer = 1 To 2\nWhile True\nPrint Str(i)\nContinue For\nWend\nNext") == "1\n2\n");
    CHECK(OutputOf("Dim n As Integer\nDo\nn = n + 1\nIf n = 3 Then Exit Do\nLoop\nPrint Str(n)") == "3\n");
    CHECK(OutputOf("Dim n As Integer\nDo Until n = 2\nn = n + 1\nLoop\nPrint Str(n)") == "2\n");
    CHECK(OutputOf("Dim n As Integer\nDo\nn = n + 1\nLoop While n < 5\nPrint Str(n)") == "5\n");
}

TEST_CASE("For Each walks through an array, also while it grows") {
    CHECK(OutputOf("Dim a() As String = Array(\"x\", \"y\")\nFor Each s As String In a\nPrint s\nIf a.UBound < 2 Then "
                   "a.Append(\"z\")\nNext") == "x\ny\nz\n");
}

TEST_CASE("Select Case tests values, ranges and comparisons, once") {
    const std::string program = "For Each n As Integer In Array(1, 5, 20, 7)\nSelect Case n\nCase 1, 2\nPrint "
                                "\"few\"\nCase 3 To 6\nPrint \"some\"\nCase Is > 10\nPrint \"many\"\nCase Else\nPrint "
                                "\"else\"\nEnd Select\nNext";
    CHECK(OutputOf(program) == "few\nsome\nmany\nelse\n");
}

TEST_CASE("Arrays grow, shrink, are searched and sorted, and guard their bounds") {
    CHECK(OutputOf("Dim a(1) As Integer\na(1) = 5\na.Append(3)\na.Insert(0, 9)\na.Remove(1)\na.Sort\nFor Each n As "
                   "Integer In a\nPrint Str(n)\nNext\nPrint Str(a.IndexOf(5)) + Str(UBound(a)) + Str(a.Pop)") ==
          "3\n5\n9\n129\n");
    CHECK(OutputOf("Dim a() As String\nRedim a(2)\nPrint Str(a.UBound) + a(0)") == "2\n");
    CHECK(RunProgram("Dim a() As Integer\na(0) = 1").message ==
          "program:2:1: OutOfBoundsException: the array has no element 0, its last is -1");
    CHECK(
        OutputOf("Dim v() As Variant = Array(1, \"a\", Nil)\nPrint Str(v.UBound)\nIf v(2) = Nil Then Print \"nil\"") ==
        "2\nnil\n");
}

TEST_CASE("An array is shared by its variables, not copied") {
    CHECK(OutputOf("Dim a() As Integer\nDim b() As Integer = a\nb.Append(1)\nPrint Str(a.UBound)") == "0\n");
}

TEST_CASE("Functions give results, subs take arguments without parentheses, and both can leave defaults out") {
    CHECK(OutputOf("Function Twice(n As Integer, times As Integer = 2) As Integer\nReturn n * times\nEnd "
                   "Function\nSub Show(text As String, more As String = \"!\")\nPrint text + more\nEnd Sub\nShow "
                   "Str(Twice(4))\nShow \"a\", \"b\"\nShow(Str(Twice(4, 3)))") == "8!\nab\n12!\n");
}

TEST_CASE("A function calls itself until the stack would be too deep, which raises") {
    CHECK(OutputOf("Function F(n As Integer) As Integer\nIf n <= 1 Then Return 1\nReturn n * F(n - 1)\nEnd "
                   "Function\nPrint Str(F(10))") == "3628800\n");
    CHECK(OutputOf("Sub F()\nF\nEnd Sub\nTry\nF\nCatch e As StackOverflowException\nPrint \"deep\"\nEnd Try") ==
          "deep\n");
}

TEST_CASE("The overload with the least conversion is called") {
    CHECK(OutputOf("Sub Show(n As Integer)\nPrint \"integer\"\nEnd Sub\nSub Show(s As String)\nPrint "
                   "\"string\"\nEnd Sub\nSub Show(v As Variant)\nPrint \"variant\"\nEnd Sub\nShow 1\nShow "
                   "\"a\"\nShow New Date") == "integer\nstring\nvariant\n");
}

TEST_CASE("A program begins with Sub Main, which gets the arguments") {
    CHECK(
        RunProgram("Dim head As String = \"got \"\nSub Main(args() As String)\nPrint head + Join(args, \",\")\nEnd Sub",
                   {{"a", "b c"}})
            .output == "got a,b c\n");
}

TEST_CASE("Classes have fields, constructors, shared members, constants and methods that subclasses override") {
    CHECK(OutputOf("Class Animal\nConst kKind = \"animal\"\nShared Dim made As Integer\nDim name As String = "
                   "\"nobody\"\nSub Constructor(given As String)\nname = given\nmade = made + 1\nEnd Sub\nFunction "
                   "Sound() As String\nReturn \"...\"\nEnd Function\nFunction Speak() As String\nReturn name + \": \" "
                   "+ Sound\nEnd Function\nEnd Class\nClass Dog\nInherits Animal\nFunction Sound() As String\nReturn "
                   "\"wuff\" + Super.Sound\nEnd Function\nEnd Class\nDim a As Animal = New Dog(\"Rex\")\nPrint "
                   "a.Speak + Animal.kKind + Str(Animal.made)\nIf a IsA Dog Then Print Dog(a).name") ==
          "Rex: wuff...animal1\nRex\n");
}

TEST_CASE("A module keeps its variables, and its name stands before its members") {
    CHECK(OutputOf("Module Counter\nDim count As Integer = 5\nFunction Increase() As Integer\ncount = count + "
                   "1\nReturn count\nEnd Function\nEnd Module\nCounter.count = 7\nPrint Str(Counter.Increase)") ==
          "8\n");
}

TEST_CASE("Objects that hold each other in a circle are given back at the end") {
    CHECK(OutputOf("Class Node\nDim other As Node\nEnd Class\nDim a As New Node\na.other = New Node\na.other.other = "
                   "a\nPrint \"done\"") == "done\n");
}

TEST_CASE("A cast to another class, and what a Variant does not hold, raise") {
    CHECK(OutputOf("Class A\nEnd Class\nClass B\nInherits A\nEnd Class\nTry\nDim b As B = B(New A)\nCatch e As "
                   "IllegalCastException\nPrint e.Message\nEnd Try\nTry\nDim v As Variant = New A\nDim n As Integer = "
                   "v\nCatch e As TypeMismatchException\nPrint \"mismatch\"\nEnd Try") == "A is no B\nmismatch\n");
}

TEST_CASE("A Variant holds anything and gives it back as what is asked for") {
    CHECK(OutputOf("Dim v As Variant = 42\nPrint v\nPrint v.StringValue + Str(v.IntegerValue)\nv = \"7\"\nDim n As "
                   "Integer = v\nPrint Str(n + 1)\nv = Nil\nIf v.IsNull Then Print \"nil\"\nDim a() As String = "
                   "Array(\"x\")\nv = a\nDim b() As String = v\nPrint b(0)") == "42\n4242\n8\nnil\nx\n");
}

} // namespace
