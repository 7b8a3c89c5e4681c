// Where a query looks, how many results it keeps, and queries within queries.
#include "simulator/macos/CoreServices/metadata/store/scripted_scopes.h"
#include "simulator/macos/CoreServices/metadata/store/search_scope.h"
#include "tests/simulator/macos/query/support/scripted_query.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <cstdlib>
#include <filesystem>

namespace sim::macos {

namespace {

FileNames Found(std::initializer_list<std::string_view> scope) {
    ScriptedQuery scripted({});
    for (const char *path : {"/one/a", "/one/below/b", "/two/c", "/onetwo/d"})
        scripted.store.Add(path);
    scripted.query.SetScope(scope);
    REQUIRE(scripted.query.Execute(kMDQuerySynchronous));
    return scripted.query.SortedResults();
}

std::vector<std::string> FoldersOf(std::initializer_list<std::string_view> entries) {
    return store::ResolveScope(Names(entries).Get()).folders;
}

} // namespace

TEST_CASE("a scope is one or more folders with all that lies below them") {
    CHECK(Found({"/one"}) == FileNames{"a", "b"});
    CHECK(Found({"/one/below"}) == FileNames{"b"});
    CHECK(Found({"/two", "/one/below"}) == FileNames{"b", "c"});
    CHECK(Found({"/"}) == FileNames{"a", "b", "c", "d"});
    CHECK(Found({"/one/"}) == FileNames{"a", "b"});
    CHECK(Found({"/three"}).empty());
}

TEST_CASE("folders that lie in each other count once") {
    CHECK(Found({"/one/below", "/one", "/one"}) == FileNames{"a", "b"});
    CHECK(FoldersOf({"/nowhere/b/c", "/nowhere/b", "/nowhere/bc"}) ==
          std::vector<std::string>{"/nowhere/b", "/nowhere/bc"});
}

TEST_CASE("an empty scope is nowhere, and no scope is the computer") {
    CHECK(Found({}).empty());
    ScriptedQuery everywhere({"a"});
    REQUIRE(everywhere.query.Execute(kMDQuerySynchronous));
    CHECK(everywhere.query.Count() == 1);
    const ScriptedScope computer("kMDQueryScopeComputer", {"/elsewhere"});
    ScriptedQuery elsewhere({"a"});
    REQUIRE(elsewhere.query.Execute(kMDQuerySynchronous));
    CHECK(elsewhere.query.Count() == 0);
}

TEST_CASE("text that is no absolute path and no scope name is nowhere") {
    CHECK(Found({"one", "~", "kMDQueryScopeMoon", "", "$HOME"}).empty());
}

TEST_CASE("each of the six scope names can be scripted") {
    for (const char *name :
         {"kMDQueryScopeHome", "kMDQueryScopeComputer", "kMDQueryScopeNetwork", "kMDQueryScopeAllIndexed",
          "kMDQueryScopeComputerIndexed", "kMDQueryScopeNetworkIndexed"}) {
        CAPTURE(name);
        const ScriptedScope scope(name, {"/two", "/one/below"});
        CHECK(Found({name}) == FileNames{"b", "c"});
    }
}

TEST_CASE("the texts of the scope constants are their names") {
    CHECK(Utf8Of(kMDQueryScopeHome) == "kMDQueryScopeHome");
    CHECK(Utf8Of(kMDQueryScopeComputer) == "kMDQueryScopeComputer");
    CHECK(Utf8Of(kMDQueryScopeNetwork) == "kMDQueryScopeNetwork");
    CHECK(Utf8Of(kMDQueryScopeAllIndexed) == "kMDQueryScopeAllIndexed");
    CHECK(Utf8Of(kMDQueryScopeComputerIndexed) == "kMDQueryScopeComputerIndexed");
    CHECK(Utf8Of(kMDQueryScopeNetworkIndexed) == "kMDQueryScopeNetworkIndexed");
}

TEST_CASE("home is the user's home folder and the computer holds everything local") {
    const auto home = std::filesystem::canonical(getenv("HOME")).string();
    CHECK(FoldersOf({"kMDQueryScopeHome"}) == std::vector<std::string>{home});
    CHECK(FoldersOf({"kMDQueryScopeComputer"}) == std::vector<std::string>{"/"});
    CHECK(FoldersOf({"kMDQueryScopeComputerIndexed"}) == FoldersOf({"kMDQueryScopeComputer"}));
    CHECK(FoldersOf({"kMDQueryScopeNetworkIndexed"}) == FoldersOf({"kMDQueryScopeNetwork"}));
}

TEST_CASE("a scope entry may be a file URL") {
    tests::Balanced balance;
    tests::TemporaryFolder folder;
    folder.File("here.txt", "x");
    const auto url = CFRef<CFURLRef>::Adopt(
        CFURLCreateWithFileSystemPath(nullptr, MakeString(folder.Path()).Get(), kCFURLPOSIXPathStyle, true));
    const auto web =
        CFRef<CFURLRef>::Adopt(CFURLCreateWithString(nullptr, MakeString("http://example.org/").Get(), nullptr));
    const CFTypeRef entries[] = {url.Get(), web.Get(), kCFBooleanTrue};
    TestQuery query("kMDItemFSName == '*'");
    MDQuerySetSearchScope(query.Get(), MakeArray(entries).Get(), 0);
    REQUIRE(query.Execute(kMDQuerySynchronous));
    CHECK(query.Results() == FileNames{"here.txt"});
}

TEST_CASE("a second scope replaces the first, and one set after execution is ignored") {
    ScriptedQuery scripted({"a"});
    scripted.query.SetScope({"/files"});
    scripted.query.SetScope({"/elsewhere"});
    REQUIRE(scripted.query.Execute(kMDQuerySynchronous));
    CHECK(scripted.query.Count() == 0);
    ScriptedQuery late({"a"});
    late.query.SetScope({"/files"});
    REQUIRE(late.query.Execute(kMDQueryWantsUpdates));
    late.query.SetScope({"/elsewhere"});
    late.Settle();
    CHECK(late.query.Count() == 1);
}

TEST_CASE("the caller's scope array may change or go once it was set") {
    ScriptedQuery scripted({"a"});
    const auto scope = CFRef<CFMutableArrayRef>::Adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    CFArrayAppendValue(scope.Get(), MakeString("/elsewhere").Get());
    MDQuerySetSearchScope(scripted.query.Get(), scope.Get(), 0);
    CFArrayAppendValue(scope.Get(), MakeString("/files").Get());
    REQUIRE(scripted.query.Execute(kMDQuerySynchronous));
    CHECK(scripted.query.Count() == 0);
}

TEST_CASE("options for the scope, of which there are none, are refused") {
    ScriptedQuery scripted({});
    const StopsThrow stops;
    CHECK_THROWS_AS(MDQuerySetSearchScope(scripted.query.Get(), Names({}).Get(), 1), Stopped);
}

TEST_CASE("a maximum count ends the gathering when it is reached") {
    ScriptedQuery scripted({"a", "b", "c", "d"});
    scripted.store.SetPace(1, 100);
    MDQuerySetMaxCount(scripted.query.Get(), 2);
    REQUIRE(scripted.query.Execute(0));
    scripted.store.Run(150);
    CHECK(scripted.query.Results() == FileNames{"a", "b"});
    CHECK(scripted.query.IsComplete());
    CHECK(scripted.listener.heard == Notifications{Progress(2), Finish(2)});
}

TEST_CASE("a maximum count holds in batches of any size, and for live queries too") {
    ScriptedQuery scripted({"a", "b", "c", "d"});
    scripted.query.SetBatches({3, kNoLimit, 1, kNoLimit, 1, 0});
    MDQuerySetMaxCount(scripted.query.Get(), 2);
    scripted.GoLive();
    CHECK(scripted.query.Results() == FileNames{"a", "b"});
    scripted.Add("e");
    scripted.Settle();
    CHECK(scripted.listener.heard.empty());
    scripted.Remove("a");
    scripted.Settle();
    scripted.Add("f");
    scripted.Settle();
    CHECK(scripted.query.Results() == FileNames{"b", "f"});
}

TEST_CASE("a maximum count of zero or less is none, and one set after execution is ignored") {
    for (CFIndex size : {0L, -1L}) {
        ScriptedQuery scripted({"a", "b"});
        MDQuerySetMaxCount(scripted.query.Get(), size);
        REQUIRE(scripted.query.Execute(kMDQuerySynchronous));
        CHECK(scripted.query.Count() == 2);
    }
    ScriptedQuery late({"a", "b"});
    REQUIRE(late.query.Execute(0));
    MDQuerySetMaxCount(late.query.Get(), 1);
    late.Settle();
    CHECK(late.query.Count() == 2);
}

TEST_CASE("a subset query finds what its source looks for and its own expression too") {
    ScriptedQuery source({"apple", "apricot", "banana"}, "kMDItemFSName == 'ap*'");
    TestQuery subset(source.query, "kMDItemFSName == '*e' || kMDItemFSName == 'b*'", {}, {});
    TestQuery subsubset(subset, "kMDItemFSName == '*l*'");
    REQUIRE(subset.Execute(kMDQuerySynchronous));
    REQUIRE(subsubset.Execute(kMDQuerySynchronous));
    CHECK(subset.Results() == FileNames{"apple"});
    CHECK(subsubset.Results() == FileNames{"apple"});
    const auto text = CFRef<CFStringRef>::Adopt(MDQueryCopyQueryString(subset.Get()));
    CHECK(Utf8Of(text.Get()) == "kMDItemFSName == '*e' || kMDItemFSName == 'b*'");
}

TEST_CASE("a subset query has its own life, lists and references") {
    ScriptedQuery source({"apple", "banana"});
    source.query.SetScope({"/files"});
    const CFIndex references = CFGetRetainCount(source.query.Get());
    TestQuery subset(source.query, "kMDItemFSName == 'a*'", {"kMDItemFSName"}, {"kMDItemFSName"});
    CHECK(CFGetRetainCount(source.query.Get()) == references);
    source.listener.StopListening();
    source.query.Release();
    source.store.Add("/elsewhere/another apple");
    source.store.Add("/elsewhere/avocado");
    REQUIRE(subset.Execute(kMDQuerySynchronous));
    CHECK(subset.Results() == FileNames{"apple"}); // in the source's scope
}

TEST_CASE("a subset query of a malformed expression is none") {
    ScriptedQuery source({});
    CHECK(MDQueryCreateSubset(nullptr, source.query.Get(), MakeString("").Get(), nullptr, nullptr) == nullptr);
    CHECK(MDQueryCreateSubset(nullptr, source.query.Get(), MakeString("a =").Get(), nullptr, nullptr) == nullptr);
}

} // namespace sim::macos
