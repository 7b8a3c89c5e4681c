// The event loop: queries and timers, and when it ends.
#include "tests/simulator/language/program_run.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

using namespace tests;

namespace {

/// A folder with two files of text, and the lines that make a query look there.
class Folder {
public:
    Folder() {
        folder_.File("one.txt", "one");
        folder_.File("two.txt", "two!");
    }

    std::string Scope() const {
        return "Dim folders() As FolderItem = Array(New FolderItem(\"" + folder_.Path() +
               "\"))\nDim noNames() As String\nquery.SetSearchScope(folders, noNames)\n";
    }

private:
    TemporaryFolder folder_;
};

TEST_CASE("A class's handlers receive the query's events, and the loop ends when it neither gathers nor is live") {
    const Folder folder;
    CHECK(OutputOf("Class Search\nInherits MDQueryQTX\nDim title As String = \"found\"\nEvent Finish()\nPrint title + "
                   "Str(Self.ResultCount) + Str(ResultCount)\nEnd Event\nEnd Class\nDim query As New "
                   "Search(\"kMDItemFSName == '*.txt'\")\n" +
                   folder.Scope() + "If query.Execute(0) Then Print \"started\"") == "started\nfound22\n");
}

TEST_CASE("AddHandler gives one query its handler, and the sender comes first") {
    const Folder folder;
    CHECK(OutputOf("Sub Done(sender As MDQueryQTX)\nPrint Str(sender.ResultCount)\nEnd Sub\nDim query As New "
                   "MDQueryQTX(\"kMDItemFSName == '*.txt'\")\nAddHandler query.Finish, AddressOf Done\n" +
                   folder.Scope() + "Call query.Execute(0)") == "2\n");
}

TEST_CASE("A live query keeps the loop going until Quit") {
    const Folder folder;
    CHECK(OutputOf("Class Search\nInherits MDQueryQTX\nEvent Finish()\nPrint \"quits\"\nQuit\nEnd Event\nEnd "
                   "Class\nDim query As New Search(\"kMDItemFSName == '*.txt'\")\n" +
                   folder.Scope() + "Call query.Execute(MDQueryQTX.kMDQueryWantsUpdates)") == "quits\n");
}

TEST_CASE("Items go through arrays, For Each, dictionaries and variants and stay the same") {
    const Folder folder;
    CHECK(OutputOf("Dim noLists(), order() As String\norder.Append(MDItemQTX.kMDItemFSName)\nDim query As New "
                   "MDQueryQTX(\"kMDItemFSName == '*.txt'\", noLists, order)\n" +
                   folder.Scope() +
                   "Call query.Execute(MDQueryQTX.kMDQuerySynchronous)\nDim known As New Dictionary\nFor Each item As "
                   "MDItemQTX In query.Results\nPrint item.FSName + Str(item.FSSize)\nknown.Value(item) = "
                   "item.FSName\nNext\nDim first As MDItemQTX = query.ResultAtIndex(0)\nDim any As Variant = "
                   "query.Results(1)(0)\nPrint Str(known.Count)\nPrint first.FSName") ==
          "one.txt3\ntwo.txt4\n2\none.txt\n");
}

TEST_CASE("Properties that the plugin stores or computes are read and written") {
    CHECK(OutputOf("Dim query As New MDQueryQTX(\"a == 1\")\nquery.Tag = New Date(2014, 2, 3)\nDim tag As Date = "
                   "query.Tag\nPrint tag.SQLDate\nDim batching As MDQueryBatchingParamsQTX = "
                   "query.BatchingParameters\nbatching.firstMaxNum = 7\nquery.BatchingParameters = batching\nPrint "
                   "Str(query.BatchingParameters.firstMaxNum)") == "2014-02-03\n7\n");
}

TEST_CASE("A timer fires once, or again and again until it is turned off") {
    CHECK(OutputOf("Class Ticker\nInherits Timer\nDim rest As Integer = 3\nEvent Action()\nPrint \"tick\"\nrest = rest "
                   "- 1\nIf rest = 0 Then Mode = Timer.ModeOff\nEnd Event\nEnd Class\nSub Once(sender As "
                   "Timer)\nPrint \"once after \" + Str(sender.Period)\nEnd Sub\nDim often As New Ticker\noften.Period "
                   "= 20\noften.Mode = Timer.ModeMultiple\nDim single As New Timer\nsingle.Period = 30\nAddHandler "
                   "single.Action, AddressOf Once\nsingle.Mode = Timer.ModeSingle") ==
          "tick\nonce after 30\ntick\ntick\n");
}

TEST_CASE("A handler that was removed is not called") {
    CHECK(OutputOf("Sub Once(sender As Timer)\nPrint \"no\"\nEnd Sub\nDim t As New Timer\nAddHandler t.Action, "
                   "AddressOf Once\nRemoveHandler t.Action, AddressOf Once\nt.Mode = 1") == "");
}

} // namespace
