// A running query as the program hears it: progress in batches, the finish, and what changes afterwards.
#include <doctest/doctest.h>

#include "simulator/macos/CoreServices/metadata/query/scripted_progress.h"
#include "tests/spotlight/support/event_log.h"
#include "tests/support/host_ages.h"

#include <cmath>

using namespace tests;

namespace {} // namespace

TEST_CASE("Gathering raises Progress and then Finish; changes raise Update, on hosts of every age") {
    AtEveryAge([&](std::optional<double> version) {
        QueryProgram program(HostOptions{.version = version});
        program.Add({"a", "b"});
        Object query = program.NewQuery();
        EventLog log(query);
        program.GoLive(query);
        CHECK(log.Take() == Events{Progress(), Finish()});
        query.Call<Object>("Results");
        program.Add({"c"});
        program.Touch("a");
        program.Remove("b");
        program.Settle();
        CHECK(log.Take() == Events{Update({"c"}, {"a"}, {"b"})});
    });
}

TEST_CASE("No event comes while the run loop does not run") {
    QueryProgram program;
    program.Add({"a"});
    Object query = program.NewQuery();
    EventLog log(query);
    query.Call<bool>("Execute", 4);
    program.store.Clock().Advance(3600);
    CHECK(log.Take().empty());
    program.Settle();
    CHECK(log.Take() == Events{Progress(), Finish()});
}

TEST_CASE("A synchronous query raises its events before Execute returns") {
    QueryProgram program;
    program.Add({"a"});
    Object query = program.NewQuery();
    EventLog log(query);
    program.Gather(query);
    CHECK(log.Take() == Events{Progress(), Finish()});
}

TEST_CASE("Progress comes in batches of the numbers that the batching parameters say") {
    QueryProgram program;
    for (int file = 0; file < 11; file++)
        program.Add(std::to_string(file));
    Object query = program.NewQuery();
    program.SetBatches(query, {3, kNoLimit, 5, kNoLimit, kNoLimit, 0});
    std::vector<int32_t> counts;
    EventLog log(query, [&](const EventCall &call) {
        Object sender = call.object;
        counts.push_back(sender.Call<int32_t>("ResultCount"));
    });
    program.GoLive(query);
    CHECK(counts == std::vector<int32_t>{3, 8, 11, 11});
    CHECK(log.Take() == Events{Progress(), Progress(), Progress(), Finish()});
}

TEST_CASE("Progress comes after the times that the batching parameters say") {
    QueryProgram program;
    for (int file = 0; file < 6; file++)
        program.Add(std::to_string(file));
    program.store.SetPace(1, 100);
    Object query = program.NewQuery();
    program.SetBatches(query, {kNoLimit, 150, kNoLimit, 250, kNoLimit, 0});
    const double start = program.store.Clock().Now();
    std::vector<long> times;
    EventLog log(
        query, [&](const EventCall &) { times.push_back(std::lround((program.store.Clock().Now() - start) * 1000)); });
    query.Call<bool>("Execute", 4);
    program.store.Run(2000);
    CHECK(times == std::vector<long>{150, 400, 500, 500});
    CHECK(log.CountOf("Progress") == 3);
}

TEST_CASE("Progress carries the added items where the system gives them") {
    const sim::macos::ProgressWithAddedItems withAdded;
    QueryProgram program;
    program.Add({"a", "b", "c"});
    Object query = program.NewQuery();
    program.SetBatches(query, {2, kNoLimit, 2, kNoLimit, kNoLimit, 0});
    EventLog log(query);
    program.GoLive(query);
    CHECK(log.Take() == Events{Progress({"a", "b"}), Progress({"c"}), Finish()});
}

TEST_CASE("Changed and removed lists hold only items that the program has met") {
    QueryProgram program;
    program.Add({"a", "b", "c", "d"});
    Object query = program.NewQuery("kMDItemFSName == '*'", {}, {"kMDItemFSName"});
    program.GoLive(query);
    EventLog log(query);
    query.Call<Object>("ResultAtIndex", 0);
    query.Call<Object>("ResultAtIndex", 2);
    for (const char *name : {"a", "b"})
        program.Touch(name);
    for (const char *name : {"c", "d"})
        program.Remove(name);
    program.Settle();
    CHECK(log.Take() == Events{Update({}, {"a"}, {"c"})});
    CHECK(program.Results(query) == Names{"a", "b"});
}

TEST_CASE("An item that comes and goes again between two updates is not reported") {
    QueryProgram program;
    Object query = program.NewQuery();
    program.GoLive(query);
    EventLog log(query);
    program.Add({"a"});
    program.Remove("a");
    program.Settle();
    CHECK(log.Take().empty());
}

TEST_CASE("A removed item is the same item that was added, told by IndexOfResult before and by its handle after") {
    QueryProgram program;
    Object query = program.NewQuery();
    program.GoLive(query);
    Object added, removed;
    query.OnEvent("Update", [&](const EventCall &call) {
        if (call.arguments[0].As<Object>().UpperBound() == 0)
            added = call.arguments[0].As<Object>().At(0).As<Object>();
        if (call.arguments[2].As<Object>().UpperBound() == 0)
            removed = call.arguments[2].As<Object>().At(0).As<Object>();
    });
    program.Add({"a"});
    program.Settle();
    REQUIRE(added);
    CHECK(query.Call<int32_t>("IndexOfResult", added) == 0);
    program.Remove("a");
    program.Settle();
    REQUIRE(removed);
    CHECK_FALSE(removed == added); // another object of the host
    CHECK(CFEqual(ItemOf(removed), ItemOf(added)));
    CHECK(query.Call<int32_t>("IndexOfResult", removed) == -1);
    CHECK(removed.Get<std::string>("FSName") == "a");
}

TEST_CASE("While updates are disabled no event comes; what happened meanwhile comes as one update") {
    QueryProgram program;
    program.Add({"a", "b"});
    Object query = program.NewQuery();
    program.GoLive(query);
    query.Call<Object>("Results");
    EventLog log(query);
    query.Call<void>("DisableUpdates");
    program.Add({"c", "d"});
    program.Touch("a");
    program.Touch("a");
    program.Remove("b");
    program.Remove("d");
    program.store.Run(10000);
    CHECK(log.Take().empty());
    CHECK(query.Call<int32_t>("ResultCount") == 2);
    query.Call<void>("EnableUpdates");
    CHECK(log.Take().empty()); // not before the run loop runs
    program.Settle();
    CHECK(log.Take() == Events{Update({"c"}, {"a"}, {"b"})});
}

TEST_CASE("Disabled updates hold back progress and finish as well") {
    QueryProgram program;
    program.Add({"a"});
    Object query = program.NewQuery();
    EventLog log(query);
    query.Call<void>("DisableUpdates");
    query.Call<bool>("Execute", 4);
    program.store.Run(1000);
    CHECK(log.Take().empty());
    CHECK_FALSE(query.Call<bool>("IsGatheringComplete"));
    query.Call<void>("EnableUpdates");
    program.Settle();
    CHECK(log.Take() == Events{Progress(), Finish()});
}

TEST_CASE("Stop ends the events of a live query") {
    QueryProgram program;
    program.Add({"a"});
    Object query = program.NewQuery();
    program.GoLive(query);
    EventLog log(query);
    query.Call<void>("Stop");
    program.Add({"b"});
    program.store.Run(1000);
    CHECK(log.Take().empty());
    CHECK(program.Results(query) == Names{"a"});
}

TEST_CASE("Two queries at once: each object hears of its own query only") {
    QueryProgram program;
    program.Add({"a1", "b1"});
    Object one = program.NewQuery("kMDItemFSName == 'a*'"), other = program.NewQuery("kMDItemFSName == 'b*'");
    EventLog ofOne(one), ofOther(other);
    program.GoLive(one);
    CHECK(ofOne.Take() == Events{Progress(), Finish()});
    CHECK(ofOther.Take().empty());
    program.GoLive(other);
    CHECK(ofOther.Take() == Events{Progress(), Finish()});
    program.Add({"a2", "b2"});
    program.Settle();
    CHECK(ofOne.Take() == Events{Update({"a2"})});
    CHECK(ofOther.Take() == Events{Update({"b2"})});
    one.Release();
    program.Add({"a3", "b3"});
    program.Settle();
    CHECK(ofOne.Take().empty());
    CHECK(ofOther.Take() == Events{Update({"b3"})});
}
