// Where a query looks: what SetSearchScope makes of folder items and option strings.
#include <doctest/doctest.h>

#include "simulator/macos/CoreServices/metadata/query/query_scope.h"
#include "simulator/macos/CoreServices/metadata/store/scripted_scopes.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/fault.h"

using namespace tests;

namespace {

void SetScope(Object &query, const Object &paths, const Object &options) {
    query.Call<void>("SetSearchScope", paths, options);
}

/// The entries as the framework got them; URLs as their text.
std::optional<Names> ScopeOf(const Object &query) {
    const CFArrayRef scope = sim::macos::SearchScopeOf(QueryOf(query));
    return scope ? std::optional(TextsIn(scope)) : std::nullopt;
}

/// The URLs of folders that every machine has.
const std::string kRoot = "file:///", kUsr = "file:///usr/", kEtc = "file:///etc/";

struct Age {
    double version;
    bool directArrayStorage;
};
constexpr Age kAges[] = {{2011.4, true}, {2011.4, false}, {2013.04, true}, {2013.04, false}, {2016.1, true}};

HostOptions Aged(const Age &age) { return {.version = age.version, .directArrayStorage = age.directArrayStorage}; }

} // namespace

TEST_CASE("One folder and one scope name give a scope of two entries: the folder's URL, then the name's text") {
    for (const Age &age : kAges) {
        CAPTURE(age.version);
        QueryProgram program(Aged(age));
        Object query = program.NewQuery();
        SetScope(query, program.FolderItems({"/usr"}),
                 program.Strings({program.Host().Constant("MDQueryQTX", "kMDQueryScopeHome").As<std::string>()}));
        CHECK(ScopeOf(query) == Names{kUsr, "kMDQueryScopeHome"});
        const CFArrayRef scope = sim::macos::SearchScopeOf(QueryOf(query));
        CHECK(CFGetTypeID(CFArrayGetValueAtIndex(scope, 0)) == CFURLGetTypeID());
        CHECK(CFGetTypeID(CFArrayGetValueAtIndex(scope, 1)) == CFStringGetTypeID());
        CHECK(program.Host().Raised().empty());
    }
}

TEST_CASE("URLs come before option strings, each in the order of their array, on hosts of every age") {
    for (const Age &age : kAges) {
        CAPTURE(age.version);
        CAPTURE(age.directArrayStorage);
        QueryProgram program(Aged(age));
        Object query = program.NewQuery();
        SetScope(query, program.FolderItems({"/usr", "/", "/etc"}),
                 program.Strings({"kMDQueryScopeNetwork", "any other text", "kMDQueryScopeComputer"}));
        CHECK(ScopeOf(query) ==
              Names{kUsr, kRoot, kEtc, "kMDQueryScopeNetwork", "any other text", "kMDQueryScopeComputer"});
    }
}

TEST_CASE("Both arrays empty, or both nil, set an empty scope") {
    QueryProgram program;
    Object query = program.NewQuery();
    CHECK(ScopeOf(query) == std::nullopt);
    SetScope(query, program.FolderItems({}), program.Strings({}));
    CHECK(ScopeOf(query) == Names{});
    Object other = program.NewQuery();
    SetScope(other, Object(), Object());
    CHECK(ScopeOf(other) == Names{});
}

TEST_CASE("Either array may be nil or empty") {
    QueryProgram program;
    Object query = program.NewQuery();
    for (const Object &none : {Object(), program.Strings({})}) {
        SetScope(query, program.FolderItems({"/usr"}), none);
        CHECK(ScopeOf(query) == Names{kUsr});
    }
    for (const Object &none : {Object(), program.FolderItems({})}) {
        SetScope(query, none, program.Strings({"one", "two"}));
        CHECK(ScopeOf(query) == Names{"one", "two"});
    }
}

TEST_CASE("Nil folder items, items without a URL and strings that do not convert are left out silently") {
    for (const Age &age : kAges) {
        CAPTURE(age.version);
        CAPTURE(age.directArrayStorage);
        QueryProgram program(Aged(age));
        Object query = program.NewQuery();
        const Object paths = program.Host().NewArray("folderitem", {nullptr});
        for (const char *path : {"/usr", "", "/no such folder/at all/item", "/etc"})
            paths.Append(program.Host().NewFolderItem(path));
        paths.Append(nullptr);
        const Object options = program.Host().NewArray("string", {nullptr, "one"});
        options.Append(sim::host::Text{"\xff\xfe\xfd", sim::host::kUTF8});
        options.Append("two");
        SetScope(query, paths, options);
        CHECK(ScopeOf(query) == Names{kUsr, kEtc, "one", "two"});
        CHECK(program.Host().Raised().empty());
    }
}

TEST_CASE("A folder that does not exist yet is searched by its future URL") {
    QueryProgram program;
    Object query = program.NewQuery();
    SetScope(query, program.FolderItems({"/usr/not there yet"}), Object());
    CHECK(ScopeOf(query) == Names{kUsr + "not%20there%20yet"});
}

TEST_CASE("Another call replaces the scope") {
    QueryProgram program;
    Object query = program.NewQuery();
    SetScope(query, program.FolderItems({"/usr"}), program.Strings({"one"}));
    SetScope(query, program.FolderItems({"/etc"}), Object());
    CHECK(ScopeOf(query) == Names{kEtc});
}

TEST_CASE("The scope decides what is found: paths as texts, and all six scope names") {
    for (const char *name :
         {"kMDQueryScopeHome", "kMDQueryScopeComputer", "kMDQueryScopeNetwork", "kMDQueryScopeAllIndexed",
          "kMDQueryScopeComputerIndexed", "kMDQueryScopeNetworkIndexed"}) {
        CAPTURE(name);
        QueryProgram program;
        const sim::macos::ScriptedScope scope(name, {"/named"});
        program.store.Add("/named/a");
        program.store.Add("/elsewhere/b");
        program.store.Add("/by path/c");
        Object query = program.NewQuery("kMDItemFSName == '*'", {}, {"kMDItemFSName"});
        SetScope(query, Object(),
                 program.Strings({program.Host().Constant("MDQueryQTX", name).As<std::string>(), "/by path"}));
        program.Gather(query);
        CHECK(program.Results(query) == Names{"a", "c"});
    }
}

TEST_CASE("The folder of a folder item decides what is found") {
    QueryProgram program;
    program.store.Add("/usr/inside");
    program.store.Add("/etc/outside");
    Object query = program.NewQuery();
    SetScope(query, program.FolderItems({"/usr"}), Object());
    program.Gather(query);
    CHECK(program.Results(query) == Names{"inside"});
}

TEST_CASE("The program's arrays are as they were, and none of their elements is kept") {
    for (const Age &age : kAges) {
        QueryProgram program(Aged(age));
        Object query = program.NewQuery();
        const Object folder = program.Host().NewFolderItem("/usr");
        const Object paths = program.Host().NewArray("folderitem", {folder, folder});
        const Object options = program.Strings({"one"});
        SetScope(query, paths, options);
        CHECK(folder.References() == 3);
        CHECK(paths.As<Object>() == std::vector<Object>{folder, folder});
        CHECK(options.As<std::string>() == Names{"one"});
    }
}

TEST_CASE("Below 2016 elements come from the array's own storage where it can be seen, otherwise by the accessors") {
    for (const Age &age : kAges) {
        CAPTURE(age.version);
        QueryProgram program(Aged(age));
        Object query = program.NewQuery();
        program.Host().ClearLog();
        SetScope(query, program.FolderItems({"/usr", "/etc"}), program.Strings({"one"}));
        const bool direct = age.version < 2016.0 && age.directArrayStorage;
        CHECK(program.Host().CallCount("PluginObjectArrayGetProc") == (direct ? 0 : 2));
        CHECK(program.Host().CallCount("REALLockObject") == (direct ? 2 : 0));
        CHECK(program.Host().CallCount("RuntimeDirectReadStringArray") == (direct ? 0 : 1));
        CHECK(ScopeOf(query) == Names{kUsr, kEtc, "one"});
    }
}

TEST_CASE("A host with the older names only reads folder items by its direct accessor") {
    QueryProgram program(HostOptions{.version = 2016.1, .secondNamesOnly = true});
    Object query = program.NewQuery();
    SetScope(query, program.FolderItems({"/usr"}), Object());
    CHECK(ScopeOf(query) == Names{kUsr});
    CHECK(program.Host().CallCount("RuntimeArrayDirectGetGetProc") == 1);
}

TEST_CASE("On a host without any element accessor every folder item is skipped and the option strings are set") {
    QueryProgram program(
        HostOptions{.version = 2016.1, .withheld = {"PluginObjectArrayGetProc", "RuntimeArrayDirectGetGetProc"}});
    Object query = program.NewQuery();
    SetScope(query, program.FolderItems({"/usr", "/etc"}), program.Strings({"one"}));
    CHECK(ScopeOf(query) == Names{"one"});
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("On a host that cannot name files every folder item is skipped") {
    QueryProgram program(HostOptions{.withheld = {"REALFSRefFromFolderItem"}});
    Object query = program.NewQuery();
    SetScope(query, program.FolderItems({"/usr", "/etc"}), program.Strings({"one"}));
    CHECK(ScopeOf(query) == Names{"one"});
}

TEST_CASE("Where no memory is left for the scope nothing is set and nothing is raised") {
    QueryProgram program;
    Object query = program.NewQuery();
    const Fault fault("CFArrayCreateMutable", 1);
    SetScope(query, program.FolderItems({"/usr"}), program.Strings({"one"}));
    CHECK(ScopeOf(query) == std::nullopt);
    CHECK(program.Host().Raised().empty());
}
