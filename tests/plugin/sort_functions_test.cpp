// The sort functions that not every system exports: when start-up looks for them, and that no step of the search leaks.
#include <doctest/doctest.h>

#include "tests/plugin/default_system.h"
#include "tests/support/test_session.h"

using sim::host::HostOptions;
using sim::host::Object;
using tests::DefaultSystem;
using tests::TestSession;

namespace environment = sim::macos::environment;
namespace faults = sim::macos::faults;
namespace ledger = sim::macos::ledger;

namespace {

/// Which of the three functions the plugin has, told by what its methods do.
struct Found {
    bool getter, setter, order;
    bool operator==(const Found &) const = default;
};
constexpr Found kNone = {false, false, false};

Found FunctionsOf(TestSession &session) {
    auto &host = session.Host();
    Object query = host.Create("MDQueryQTX");
    const Object names = host.NewArray("string", {"kMDItemFSName"});
    query.Call<void>("Constructor", "kMDItemFSName == '*'", host.NewArray("string"), names);
    // Setting the flags is only possible where the getter is there too, so one answer tells of both.
    const bool set = query.Call<bool>("SetSortOptionFlagsForAttribute", "kMDItemFSName", uint32_t{1});
    const bool got = query.Call<int32_t>("GetSortOptionFlagsForAttribute", "kMDItemFSName") == 1;
    return {got, set, query.Call<bool>("SetSortOrder", names)};
}

/// What start-up alone leaves in the system's ledger.
std::vector<std::string> LeftByStartUp(HostOptions options) {
    const auto before = ledger::Take();
    std::vector<std::string> left;
    {
        TestSession session(std::move(options));
        for (const auto &entry : ledger::Since(before).made)
            left.push_back(entry.type);
        CHECK(FunctionsOf(session) == kNone);
    }
    return left;
}

} // namespace

TEST_CASE("The usual system exports the setter and the sort order but not the getter, so only the sort order works") {
    const DefaultSystem system;
    TestSession session;
    CHECK(FunctionsOf(session) == Found{false, false, true});
}

TEST_CASE("On a system that exports all three functions all three methods work") {
    const DefaultSystem system;
    environment::SetExports("MDQueryGetSortOptionFlagsForAttribute", true);
    TestSession session;
    CHECK(FunctionsOf(session) == Found{true, true, true});
}

TEST_CASE("On a system that exports none of the three functions the methods give 0 and false") {
    const DefaultSystem system;
    for (const char *function :
         {"MDQueryGetSortOptionFlagsForAttribute", "MDQuerySetSortOptionFlagsForAttribute", "MDQuerySetSortOrder"})
        environment::SetExports(function, false);
    TestSession session;
    CHECK(FunctionsOf(session) == kNone);
}

TEST_CASE("A host that does not run a built application leaves the functions alone, even where the system has them") {
    const DefaultSystem system;
    environment::SetExports("MDQueryGetSortOptionFlagsForAttribute", true);
    CHECK(LeftByStartUp(HostOptions{.runsBuiltApplication = false}).empty());
}

TEST_CASE("A host that cannot tell whether it runs a built application leaves the functions alone") {
    const DefaultSystem system;
    CHECK(LeftByStartUp(HostOptions{.withheld = {"REALinRuntime"}}).empty());
}

TEST_CASE("The framework's bundle is the one thing that start-up keeps") {
    const DefaultSystem system;
    const auto before = ledger::Take();
    TestSession session;
    const auto made = ledger::Since(before).made;
    REQUIRE(made.size() == 1);
    CHECK(made.front().type == "CFBundle");
    CHECK(made.front().retainCount == 1);
}

TEST_CASE("Every step on the way to the framework may fail, and nothing is left behind") {
    const DefaultSystem system;
    SUBCASE("the folder is not found") { environment::SetFindFolderResult(fnfErr); }
    SUBCASE("the folder has no URL") { faults::FailEvery("CFURLCreateFromFSRef"); }
    SUBCASE("the framework has no URL") { faults::FailEvery("CFURLCreateCopyAppendingPathComponent"); }
    SUBCASE("the framework has no bundle") { faults::FailEvery("CFBundleCreate"); }
    SUBCASE("the framework does not exist") { environment::SetFrameworkExists(false); }
    SUBCASE("the executable does not load") { environment::SetFrameworkLoads(false); }
    CHECK(LeftByStartUp({}).empty());
}
