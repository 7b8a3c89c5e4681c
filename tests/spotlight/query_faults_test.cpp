// A whole program's use of queries with one thing missing at a time: each service of the host, on hosts of several
// ages, and each call of the system that can fail. Less may happen; nothing crashes and nothing is lost.
#include <doctest/doctest.h>

#include "simulator/macos/CoreServices/metadata/query/scripted_progress.h"
#include "tests/spotlight/support/event_log.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

#include <algorithm>
#include <set>

using namespace tests;

namespace {

/// Uses every method of the class once, lives through all three events, and drops everything.
void UseQueries(QueryProgram &program) {
    const sim::macos::ProgressWithAddedItems withAdded;
    auto &host = program.Host();
    const Object names = program.Strings({"kMDItemFSName", "kMDItemFSSize"});
    const auto file = program.store.Add("/files/a");
    program.store.SetNumber(file, "kMDItemFSSize", 7);
    Object query = host.Create("MDQueryQTX");
    query.Call<void>("Constructor", "kMDItemFSName == '*'", names, names);
    query.Set("Tag", "a tag");
    int events = 0;
    for (const char *event : {"Progress", "Finish", "Update"})
        query.OnEvent(event, [&](const EventCall &) { events++; });
    query.Call<void>("SetSearchScope", program.FolderItems({"/files", "/usr"}), program.Strings({"/files"}));
    query.Call<void>("SetMaxCount", 100);
    query.Set("BatchingParameters", query.Get<Object>("BatchingParameters"));
    query.Call<bool>("Execute", 4);
    program.store.Run(1000);
    Object item = query.Call<Object>("ResultAtIndex", 0);
    query.Call<Object>("Results");
    query.Call<int32_t>("IndexOfResult", item);
    query.Call<uint32_t>("CountOfResultsWithAttributeValue", "kMDItemFSName", "a");
    query.Call("AttributeValueOfResultAtIndex", "kMDItemFSName", uint32_t{0});
    query.Call("ValuesOfAttribute", "kMDItemFSSize");
    for (const char *property : {"ValueListAttributes", "SortingAttributes", "QueryString", "ResultCount"})
        query.Get(property);
    query.Call<int32_t>("GetSortOptionFlagsForAttribute", "kMDItemFSName");
    query.Call<bool>("SetSortOptionFlagsForAttribute", "kMDItemFSName", uint32_t{1});
    query.Call<bool>("SetSortOrder", names);
    query.Call<void>("DisableUpdates");
    program.store.Add("/files/b");
    query.Call<void>("EnableUpdates");
    program.store.Touch(file);
    program.store.Run(1000);
    program.store.Remove(file);
    program.store.Run(1000);
    Object subset = host.Create("MDQueryQTX");
    subset.Call<void>("Constructor", query, "kMDItemFSName == 'b'", names, names);
    subset.Call<bool>("Execute", 1);
    query.Call<void>("Stop");
    host.Create("MDQueryQTX").Call<void>("Stop"); // raises
}

/// Every name that the program's use makes the plugin ask for.
std::set<std::string> NamesAskedFor(double version) {
    QueryProgram program(version);
    UseQueries(program);
    std::set<std::string> names;
    for (const auto &request : program.Host().Requests())
        names.insert(request.name);
    // Without the first nothing else works, by the host's own rules. No host keeps quiet about its age and has the
    // layouts of a new one. Without the last two a leak is the only result there can be.
    for (const char *name : {"RegisterPluginVersion", "REALGetRBVersion", "REALUnlockObject", "REALUnlockString"})
        names.erase(name);
    return names;
}

} // namespace

TEST_CASE("A program's use of queries is in balance, with events, on hosts of every age") {
    AtUsualAges([&](double version) {
        QueryProgram program(version);
        UseQueries(program);
        CHECK(program.TakeException() == kNilQuery);
        CHECK(program.Host().CallCount("GetEventInstance") >= 4);
    });
}

TEST_CASE("Each service of the host may be missing: less happens, nothing crashes, nothing is lost") {
    AtUsualAges([&](double version) {
        const auto names = NamesAskedFor(version);
        CHECK(names.size() > 15);
        for (const std::string &name : names) {
            if (name == "PluginRegisterClass")
                continue; // a host without classes has no program that uses them
            CAPTURE(name);
            QueryProgram program(HostOptions{.version = version, .withheld = {name}});
            UseQueries(program);
        }
    });
}

TEST_CASE("Each service of the host may give nothing, once and for ever, and nothing is lost") {
    AtUsualAges([&](double version) {
        for (const std::string &name : NamesAskedFor(version)) {
            const auto services = sim::host::Host::ServiceNames();
            const bool exists = std::find(services.begin(), services.end(), name) != services.end();
            if (!exists || name.starts_with("REALLock")) // a lock that does not lock is not one that is missing
                continue;
            for (const int32_t last : {1, INT32_MAX}) {
                CAPTURE(name);
                QueryProgram program(version);
                program.Host().ReturnNothing(name, 1, last);
                UseQueries(program);
            }
        }
    });
}

TEST_CASE("Each call of the system that can fail may fail: less happens, nothing crashes, nothing is lost") {
    AtUsualAges([&](double version) {
        size_t calls = 0;
        {
            QueryProgram program(version);
            const Fault none(0);
            UseQueries(program);
            calls = none.Count();
        }
        CHECK(calls > 15);
        for (size_t call = 1; call <= calls; call++) {
            CAPTURE(call);
            QueryProgram program(version);
            const Fault fault(call);
            UseQueries(program);
            CHECK(fault.Failed() == 1);
        }
    });
}
