// Exceptions: the program's own, the host's and the plugin's; and how a program ends.
#include "tests/simulator/language/program_run.h"

#include <doctest/doctest.h>

using namespace tests;

namespace {

TEST_CASE("What the plugin raises can be caught by its class, with its message") {
    CHECK(OutputOf("Try\nDim item As New MDItemQTX(New FolderItem(\"/nowhere/at/all\"))\nPrint item.FSName\nPrint "
                   "Str(item.FSSize)\nCatch e As NilObjectException\nPrint e.Message\nEnd Try") ==
          "Folderitem is invalid\n");
}

TEST_CASE("The first clause that fits is taken, and Finally runs in any case") {
    const std::string program =
        "Sub Test(which As Integer)\nTry\nIf which = 1 Then Raise New KeyNotFoundException(\"k\")\nIf which = 2 Then "
        "Raise New RuntimeException(\"r\")\nIf which = 3 Then Return\nPrint \"fine\"\nCatch e As "
        "KeyNotFoundException\nPrint \"key \" + e.Message\nCatch e As RuntimeException\nPrint \"any \" + "
        "e.Message\nFinally\nPrint \"finally\"\nEnd Try\nEnd Sub\nTest 0\nTest 1\nTest 2\nTest 3";
    CHECK(OutputOf(program) == "fine\nfinally\nkey k\nfinally\nany r\nfinally\nfinally\n");
}

TEST_CASE("An exception that no clause takes goes on, after Finally") {
    const ProgramRun run = RunProgram("Try\nRaise New RuntimeException(\"r\")\nCatch e As KeyNotFoundException\nPrint "
                                      "\"no\"\nFinally\nPrint \"finally\"\nEnd Try");
    CHECK(run.output == "finally\n");
    CHECK(run.message == "program:2:1: RuntimeException: r");
}

TEST_CASE("A program's own exception class has what it inherits and what it adds") {
    CHECK(OutputOf("Class Oops\nInherits RuntimeException\nDim extra As String = \"more\"\nEnd Class\nTry\nRaise New "
                   "Oops(\"mine\", 4)\nCatch e As Oops\nPrint e.Message + Str(e.ErrorNumber) + e.extra\nEnd Try") ==
          "mine4more\n");
}

TEST_CASE("A method of Nil raises, and the place is told when nobody catches it") {
    CHECK(RunProgram("Dim item As MDItemQTX\n\nPrint item.Path").message ==
          "program:3:7: NilObjectException: there is no object here, only Nil");
}

TEST_CASE("A program that never ends is stopped, and cannot catch that") {
    const ProgramRun run =
        RunProgram("Do\nTry\nWhile True\nWend\nCatch e As RuntimeException\nFinally\nPrint \"no\"\nEnd Try\nLoop");
    CHECK(run.message == "stopped");
    CHECK(run.output == "");
}

TEST_CASE("A text that would outgrow the process raises") {
    CHECK(OutputOf("Dim s As String = \"0123456789\"\nTry\nWhile True\ns = s + s\nWend\nCatch e As "
                   "OutOfMemoryException\nPrint e.Message\nEnd Try\nTry\ns = ReplaceAll(s, \"0\", s)\nCatch e As "
                   "OutOfMemoryException\nPrint \"again\"\nEnd Try") == "no text can be that long\nagain\n");
}

TEST_CASE("An exception in an event handler ends the program as any other does") {
    const ProgramRun run =
        RunProgram("Sub OnTime(sender As Timer)\nRaise New RuntimeException(\"late\")\nEnd Sub\nDim t "
                   "As New Timer\nAddHandler t.Action, AddressOf OnTime\nt.Mode = 1");
    CHECK(run.message == "program:2:1: RuntimeException: late");
}

} // namespace
