// What is told of programs that are wrong, before anything of them runs.
#include "tests/simulator/language/program_run.h"

#include <doctest/doctest.h>

using namespace tests;

namespace {

/// The first line of what is wrong.
std::string MistakeIn(const std::string &text) {
    const std::string mistakes = MistakesOf(text);
    return mistakes.substr(0, mistakes.find('\n'));
}

TEST_CASE("A mistake names file, line and column and what was expected, and points at it") {
    CHECK(MistakesOf("Dim query As New MDQueryQTX(\"a == 1\")\nPrint query.ResultCount\n") ==
          "program:2:7: expected String, found Integer (Str makes a text of a number)\n"
          "  Print query.ResultCount\n"
          "        ^~~~~~~~~~~~~~~~~\n");
}

TEST_CASE("The mark stands under the mistake behind tabs and characters of several bytes") {
    CHECK(MistakesOf("\tPrint \"\xC3\xA9\" + 1\n") == "program:1:8: + does not go with String and Integer\n"
                                                      "  \tPrint \"\xC3\xA9\" + 1\n"
                                                      "  \t      ^~~~~~~\n");
}

TEST_CASE("Every statement's mistake is told, in one go") {
    CHECK(MistakesOf("Print 1\nDim a As Strnig\nPrint a\nPrint 2\n") ==
          "program:1:7: expected String, found Integer (Str makes a text of a number)\n  Print 1\n        ^\n"
          "program:2:10: there is no type Strnig\n  Dim a As Strnig\n           ^~~~~~\n"
          "program:4:7: expected String, found Integer (Str makes a text of a number)\n  Print 2\n        ^\n");
}

TEST_CASE("Nothing of a wrong program runs") {
    const ProgramRun run = RunProgram("Print \"first\"\nPrint Unknown\n");
    CHECK(run.isWrong);
    CHECK(run.output == "");
}

TEST_CASE("What cannot be read is told with what was expected") {
    CHECK(MistakeIn("If True\nEnd If") == "program:1:8: expected 'Then', found the end of the line");
    CHECK(MistakeIn("For i As Integer = 1\nNext") ==
          "program:1:21: expected 'To' or 'DownTo', found the end of the line");
    CHECK(MistakeIn("While True") == "program:1:11: expected 'Wend', found the end of the program");
    CHECK(MistakeIn("Print (1") == "program:1:9: expected ')', found the end of the line");
    CHECK(MistakeIn("Print \"a") == "program:1:7: this text has no closing quotation mark");
    CHECK(MistakeIn("Dim 5 As Integer") == "program:1:5: expected the variable's name, found '5'");
    CHECK(MistakeIn("Goto 10") == "program:1:1: there is nothing named Goto");
    CHECK(MistakeIn("Print 1 2") == "program:1:9: expected the end of the line, found '2'");
    CHECK(MistakeIn("Next") == "program:1:1: expected a value, found 'Next'");
    CHECK(MistakeIn("Print \"a\" ?") == "program:1:11: this character means nothing here");
    CHECK(MistakeIn("Sub A\nPrint \"x\"\n") == "program:3:1: expected 'End', found the end of the program");
}

TEST_CASE("A method that is not declared, and one that belongs to the class or to an object, are told apart") {
    const std::string query = "Dim query As New MDQueryQTX(\"a == 1\")\n";
    CHECK(MistakeIn(query + "query.Start") == "program:2:7: MDQueryQTX has no Start");
    CHECK(MistakeIn("Print MDItemQTX.Path") ==
          "program:1:17: Path belongs to an object of MDItemQTX, not to the class");
    CHECK(MistakeIn("Dim item As MDItemQTX\nPrint item.kMDItemFSSize") ==
          "program:2:12: kMDItemFSSize belongs to the class; write MDItemQTX.kMDItemFSSize");
    CHECK(MistakeIn("Print MDItemQTX.kMDItemFilesize") == "program:1:17: MDItemQTX has no kMDItemFilesize");
}

TEST_CASE("Arguments of another type, too few and too many are found") {
    const std::string query = "Dim query As New MDQueryQTX(\"a == 1\")\n";
    CHECK(MistakeIn(query + "query.SetMaxCount(\"5\")") == "program:2:19: expected Integer, found String");
    CHECK(MistakeIn(query + "query.Stop(1)") == "program:2:1: Stop takes no arguments, found 1");
    CHECK(MistakeIn(query + "Dim a As MDItemQTX = query.ResultAtIndex") ==
          "program:2:22: ResultAtIndex takes 1 argument, found 0");
    CHECK(MistakeIn(query + "Dim order As Boolean = query.SetSortOrder(\"kMDItemFSName\")") ==
          "program:2:43: expected String(), found String");
    CHECK(MistakeIn("Print Str(True)") == "program:1:7: expected Str(Int64) or Str(Double), found (Boolean)");
}

TEST_CASE("A result of another type, and an array in place of one value, are found") {
    const std::string query = "Dim query As New MDQueryQTX(\"a == 1\")\n";
    CHECK(MistakeIn(query + "Dim name As String = query.ResultCount").find("expected String, found Integer") !=
          std::string::npos);
    CHECK(MistakeIn(query + "Dim one As MDItemQTX = query.Results") ==
          "program:2:24: expected MDItemQTX, found MDItemQTX()");
}

TEST_CASE("Writing what can only be read is found") {
    CHECK(MistakeIn("Dim item As MDItemQTX\nitem.Path = \"/tmp\"") == "program:2:1: Path can be read but not set");
    CHECK(MistakeIn("Dim d As New Date\nd.SQLDate = \"x\"") == "program:2:1: SQLDate can be read but not set");
    CHECK(MistakeIn("Const a = 5\na = 6") == "program:2:1: nothing can be assigned to this");
}

TEST_CASE("An event that the class has not, or with other parameters, is found") {
    const std::string head = "Class Watch\nInherits MDQueryQTX\n";
    CHECK(MistakeIn(head + "Event Finish(items() As MDItemQTX)\nEnd Event\nEnd Class") ==
          "program:3:7: expected Finish(), found (MDItemQTX())");
    CHECK(MistakeIn(head + "Event Done()\nEnd Event\nEnd Class") ==
          "program:3:7: Watch has no event Done, and a program declares none of its own here");
    CHECK(MistakeIn("Sub Done()\nEnd Sub\nDim q As MDQueryQTX\nAddHandler q.Finish, AddressOf Done") ==
          "program:4:32: expected a sub that takes (MDQueryQTX)");
}

TEST_CASE("Self outside a class, a second declaration, and a class that inherits from itself are found") {
    CHECK(MistakeIn("Print Self.Name") == "program:1:7: there is no Self outside the methods of a class");
    CHECK(MistakeIn("If True Then\nDim a As Integer\nDim a As String\nEnd If") ==
          "program:3:5: a is declared here already");
    CHECK(MistakeIn("Class A\nInherits B\nEnd Class\nClass B\nInherits A\nEnd Class") ==
          "program:5:10: B would inherit from itself");
    CHECK(MistakeIn("Class Date\nEnd Class") == "program:1:7: there is a Date already");
    CHECK(MistakeIn("Exit For") == "program:1:1: there is no such loop around this");
}

TEST_CASE("What is nested too deeply, or too long, is refused instead of exhausting the stack") {
    const std::string deep = std::string(5000, '(') + "1" + std::string(5000, ')');
    CHECK(MistakeIn("Print " + deep).find("nested too deeply") != std::string::npos);
    std::string sum = "Dim a As Integer = 1";
    for (int count = 0; count < 5000; ++count)
        sum += " + 1";
    CHECK(MistakeIn(sum).find("too long") != std::string::npos);
    std::string minus = "Dim a As Integer = ";
    CHECK(MistakeIn(minus + std::string(5000, '-') + "1").find("nested too deeply") != std::string::npos);
}

TEST_CASE("Beside Sub Main only variables and constants stand outside subs") {
    CHECK(MistakeIn("Sub Main\nEnd Sub\nPrint \"x\"") ==
          "program:3:1: beside Sub Main only Dim and Const stand outside subs");
    CHECK(MistakeIn("Sub Main(count As Integer)\nEnd Sub") == "program:1:5: Main takes (args() As String)");
}

} // namespace
