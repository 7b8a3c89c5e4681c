// Which routine a call runs, and what it can give back: overriding, overloads, handlers of superclasses, ByRef.
#include "tests/simulator/language/program_run.h"

#include <doctest/doctest.h>

using namespace tests;

namespace {

const std::string kThreeClasses = "Class A\nFunction Name() As String\nReturn \"A\"\nEnd Function\n"
                                  "Function Hello() As String\nReturn \"I am \" + Name\nEnd Function\nEnd Class\n"
                                  "Class B\nInherits A\nFunction Name() As String\nReturn \"B\"\nEnd Function\n"
                                  "End Class\n"
                                  "Class C\nInherits B\nFunction Name(times As Integer) As String\n"
                                  "Return Name + Str(times)\nEnd Function\nEnd Class\n";

TEST_CASE("The method of the object's own class runs, whatever class the variable has") {
    CHECK(OutputOf(kThreeClasses + "Dim one As A = New B\nPrint one.Name\nPrint one.Hello\nDim any As Variant = one\n"
                                   "Dim again As A = any\nPrint again.Name\nFor Each other As A In Array(New A, one)\n"
                                   "Print other.Hello\nNext") == "B\nI am B\nB\nI am A\nI am B\n");
}

TEST_CASE("A subclass that adds an overload keeps the forms of its superclasses, the nearest of each") {
    CHECK(OutputOf(kThreeClasses + "Dim one As New C\nPrint one.Name(2)\nPrint one.Name\nDim general As A = one\n"
                                   "Print general.Name\nPrint general.Hello") == "B2\nB\nB\nI am B\n");
}

TEST_CASE("A class with constructors of its own has no others") {
    CHECK(MistakesOf("Class A\nSub Constructor(n As Integer)\nEnd Sub\nEnd Class\nClass B\nInherits A\n"
                     "Sub Constructor()\nSuper.Constructor(5)\nEnd Sub\nEnd Class\nDim b As New B(7)\n")
              .find("program:11:") == 0);
    CHECK(OutputOf("Class A\nDim n As Integer\nSub Constructor(given As Integer)\nn = given\nEnd Sub\nEnd Class\n"
                   "Class B\nInherits A\nSub Constructor()\nSuper.Constructor(5)\nEnd Sub\nEnd Class\n"
                   "Dim b As New B\nPrint Str(b.n)") == "5\n");
}

TEST_CASE("Super runs the method of the superclass, which calls what the object's class has") {
    CHECK(OutputOf(kThreeClasses + "Class D\nInherits C\nFunction Name() As String\nReturn \"D, once \" + Super.Name\n"
                                   "End Function\nFunction Hello() As String\nReturn Super.Hello + \"!\"\n"
                                   "End Function\nEnd Class\nDim one As A = New D\nPrint one.Hello") ==
          "I am D, once B!\n");
}

const std::string kTickers = "Class Ticker\nInherits Timer\nFunction Word() As String\nReturn \"tick\"\nEnd Function\n"
                             "Event Action()\nPrint Word\nEnd Event\nEnd Class\n"
                             "Class Clock\nInherits Ticker\nFunction Word() As String\nReturn \"tock\"\n"
                             "End Function\n";

TEST_CASE("A class inherits the handlers of its superclass, which call the methods that it overrides") {
    CHECK(OutputOf(kTickers + "End Class\nDim one As New Clock\none.Mode = Timer.ModeSingle") == "tock\n");
}

TEST_CASE("An event that the superclass handles does not reach the subclass") {
    CHECK(MistakesOf(kTickers + "Event Action()\nEnd Event\nEnd Class")
              .find("program:15:7: Ticker handles Action already, so its subclasses do not get it\n") == 0);
}

TEST_CASE("What a routine assigns to a parameter by reference, the caller's variable has") {
    CHECK(OutputOf("Sub Swap(ByRef one As String, ByRef other As String)\nDim kept As String = one\none = other\n"
                   "other = kept\nEnd Sub\nDim a As String = \"x\"\nDim b As String = \"y\"\nSwap(a, b)\nPrint a + b\n"
                   "Swap a, b\nPrint a + b") == "yx\nxy\n");
    CHECK(OutputOf("Class Counter\nDim count As Integer\nSub Run()\nIncrease(count)\nIncrease(count)\nEnd Sub\n"
                   "Sub Increase(ByRef number As Integer)\nnumber = number + 1\nEnd Sub\nEnd Class\n"
                   "Dim c As New Counter\nc.Run\nPrint Str(c.count)") == "2\n");
    CHECK(OutputOf("Function Found(ByRef place As FolderItem, ByRef all() As String) As Boolean\n"
                   "all = Array(\"new\")\nplace = Nil\nReturn True\nEnd Function\n"
                   "Sub Main\nDim f As New FolderItem(\"/usr\")\nDim all() As String\n"
                   "If Found(f, all) And f = Nil Then Print all(0)\nEnd Sub") == "new\n");
}

TEST_CASE("A parameter by reference has given back what it was assigned before an exception") {
    CHECK(OutputOf("Sub Try2(ByRef done As Integer)\ndone = 2\nRaise New RuntimeException(\"r\")\nEnd Sub\n"
                   "Dim n As Integer\nTry\nTry2(n)\nCatch e As RuntimeException\nPrint Str(n)\nEnd Try") == "2\n");
}

TEST_CASE("By reference goes a variable of the very type") {
    const std::string sub = "Sub Twice(ByRef n As Integer)\nn = n * 2\nEnd Sub\n";
    CHECK(MistakesOf(sub + "Twice(4)").find("program:4:7: expected a variable, since n is passed by reference\n") == 0);
    CHECK(MistakesOf(sub + "Const k = 4\nTwice(k)").find("program:5:7: nothing can be assigned to this\n") == 0);
    CHECK(MistakesOf(sub + "Dim d As Double\nTwice(d)").find("program:5:7: expected Integer, found Double\n") == 0);
    CHECK(MistakesOf("Sub A(ByRef n As Integer = 4)\nEnd Sub").find("program:1:26: expected ')', found '='\n") == 0);
}

TEST_CASE("Destructors and events of a program's own are refused by name") {
    CHECK(MistakesOf("Class A\nSub Destructor()\nEnd Sub\nEnd Class") ==
          "program:2:5: destructors are not known here; call a method before the object is let go\n"
          "  Sub Destructor()\n      ^~~~~~~~~~\n");
    CHECK(MistakesOf("Class A\nEvent Changed(n As Integer)\nEnd Event\nEnd Class")
              .find("program:2:7: A has no event Changed, and a program declares none of its own here\n") == 0);
    CHECK(MistakesOf("RaiseEvent Changed(4)")
              .find("program:1:1: events of a program's own are not known here; call a method instead\n") == 0);
}

} // namespace
