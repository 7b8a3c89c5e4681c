// The host's own classes and functions.
#include "tests/simulator/language/program_run.h"

#include <doctest/doctest.h>

using namespace tests;

namespace {

TEST_CASE("Functions of text count characters, and ignore case where the host's do") {
    CHECK(
        OutputOf("Print Left(\"\xC3\xA9t\xC3\xA9\", 2) + Right(\"abc\", 1) + Mid(\"abcd\", 2, 2) + Mid(\"abcd\", 3)") ==
        "\xC3\xA9t"
        "cbccd\n");
    CHECK(OutputOf("Print Str(Len(\"\xC3\xA9\")) + Str(InStr(\"abc\", \"C\")) + Str(InStr(3, \"aaa\", \"a\")) + "
                   "Str(InStr(\"abc\", \"x\"))") == "1330\n");
    CHECK(OutputOf("Print Replace(\"aXax\", \"x\", \"-\") + ReplaceAll(\"aXax\", \"x\", \"-\")") == "a-axa-a-\n");
    CHECK(OutputOf("Print \"[\" + Trim(\"  a b \") + \"]\" + Uppercase(\"\xC3\xA9\") + Lowercase(\"A\") + Chr(65) + "
                   "Str(Asc(\"a\"))") == "[a b]\xC3\x89"
                                         "aA97\n");
    CHECK(
        OutputOf("Print Join(Split(\"a,b,,c\", \",\"), \"|\") + NthField(\"a,b\", \",\", 2) + Str(CountFields(\"a,b\", "
                 "\",\"))") == "a|b||cb2\n");
}

TEST_CASE("Functions of numbers, and numbers as text") {
    CHECK(OutputOf("Print Format(1234567.891, \"#,##0.0\") + \" \" + Format(-5, \"000\") + \" \" + Hex(255)") ==
          "1,234,567.9 -005 FF\n");
    CHECK(
        OutputOf("Print Str(Abs(-2)) + Str(Floor(1.7)) + Str(Ceil(1.2)) + Str(Round(1.5)) + Str(Sqrt(9)) + Str(Min(1, "
                 "2)) + Str(Max(1, 2)) + Str(Val(\"3.5x\"))") == "21223123.5\n");
}

TEST_CASE("A date has fields, can be reckoned with, and is compared as a moment") {
    CHECK(
        OutputOf("Dim d As New Date\nPrint d.SQLDateTime\nd.Day = d.Day - 30\nPrint d.SQLDate + Str(d.DayOfWeek)\nDim "
                 "other As New Date(d)\nIf other = d Then Print \"same\"\nother.TotalSeconds = other.TotalSeconds + "
                 "1\nIf d < other And Not (d Is other) Then Print \"later\"") ==
        "2014-06-30 15:04:05\n2014-05-317\nsame\nlater\n");
    CHECK(OutputOf("Dim d As New Date(2000, 2, 30)\nPrint d.SQLDate\nd.Month = 14\nPrint d.SQLDate") ==
          "2000-03-01\n2001-02-01\n");
}

TEST_CASE("A dictionary keeps its pairs in order, and a missing key raises") {
    CHECK(OutputOf(
              "Dim d As New Dictionary\nd.Value(\"a\") = 1\nd.Value(2) = \"b\"\nd.Value(\"a\") = 3\nFor Each key As "
              "Variant In d.Keys\nPrint key + \"=\" + d.Value(key)\nNext\nd.Remove(\"a\")\nPrint Str(d.Count) + "
              "d.Lookup(\"a\", \"none\")\nIf d.HasKey(2) Then Print d.Key(0)\nd.Clear\nPrint Str(d.Count)\nTry\nPrint "
              "d.Value(\"a\")\nCatch e As KeyNotFoundException\nPrint \"missing\"\nEnd Try") ==
          "a=3\n2=b\n1none\n2\n0\nmissing\n");
}

TEST_CASE("A memory block's bytes are read and written inside its bounds") {
    CHECK(OutputOf(
              "Dim m As New MemoryBlock(8)\nm.Long(0) = 258\nPrint Str(m.Byte(0)) + Str(m.Byte(1)) + "
              "Str(m.Short(0)) + Str(m.Size)\nm.StringValue(2, 3) = \"abc\"\nPrint m.StringValue(3, 2)\nTry\nm.Long(5) "
              "= 1\nCatch e As OutOfBoundsException\nPrint e.Message\nEnd Try") ==
          "212588\nbc\nthe memory block has only 8 bytes\n");
}

TEST_CASE("Files and folders are made, read, listed and deleted") {
    CHECK(OutputOf("Dim folder As FolderItem = SpecialFolder.Temporary.Child(\"a program's folder\")\nfolder."
                   "CreateAsFolder\nDim file As FolderItem = folder.Child(\"text.txt\")\nDim out As TextOutputStream = "
                   "TextOutputStream.Create(file)\nout.WriteLine(\"first\")\nout.Write(\"second\")\nout.Close\n"
                   "file.ModificationDate = New Date(2009, 2, 15, 12, 30)\nPrint Str(file.Length) + \" \" + "
                   "file.ModificationDate.SQLDateTime + \" \" + folder.Item(1).Name\nDim into As TextInputStream = "
                   "TextInputStream.Open(file)\nWhile Not into.EOF\nPrint into.ReadLine\nWend\ninto.Close\nfile."
                   "Delete\nPrint Str(folder.Count) + file.Parent.Name\nfolder.Delete\nIf Not folder.Exists Then Print "
                   "\"gone\"\nTry\nfolder.Delete\nout = TextOutputStream.Create(folder.Child(\"x\"))\nCatch e As "
                   "IOException\nPrint \"cannot\"\nEnd Try") ==
          "12 2009-02-15 12:30:00 text.txt\nfirst\nsecond\n0a program's folder\ngone\ncannot\n");
}

} // namespace
