// Handlers that call back: into the query that reports, into others, or to be rid of it.
#include <doctest/doctest.h>

#include "simulator/macos/CoreFoundation/notifications.h"
#include "simulator/macos/CoreServices/metadata/query/scripted_progress.h"
#include "tests/spotlight/support/event_log.h"

using namespace tests;

namespace {

constexpr const char *kEvents[] = {"Progress", "Finish", "Update"};

} // namespace

TEST_CASE("In every handler the results are up to date") {
    QueryProgram program;
    program.Add({"a", "b", "c"});
    Object query = program.NewQuery();
    program.SetBatches(query, {2, kNoLimit, 2, kNoLimit, kNoLimit, 1});
    std::vector<Names> seen;
    EventLog log(query, [&](const EventCall &call) {
        Object sender = call.object;
        seen.push_back(program.Results(sender));
        CHECK(sender.Call<int32_t>("ResultCount") == static_cast<int32_t>(seen.back().size()));
        CHECK(sender.Get<bool>("IsGatheringComplete") == (call.name != "Progress"));
    });
    program.GoLive(query);
    program.Remove("b");
    program.Settle();
    CHECK(seen == std::vector<Names>{{"a", "b"}, {"a", "b", "c"}, {"a", "b", "c"}, {"a", "c"}});
}

TEST_CASE("A handler may stop the query: in Progress there is no Finish, in Finish and Update no Update") {
    for (const char *event : kEvents) {
        CAPTURE(event);
        QueryProgram program;
        program.Add({"a", "b", "c"});
        Object query = program.NewQuery();
        program.SetBatches(query, {1, kNoLimit, 1, kNoLimit, kNoLimit, 1});
        program.store.SetPace(1, 10);
        bool stopped = false;
        EventLog log(query, [&](const EventCall &call) {
            if (call.name != event || std::exchange(stopped, true))
                return;
            Object sender = call.object;
            sender.Call<void>("Stop");
        });
        query.Call<bool>("Execute", 4);
        program.store.Run(1000);
        program.Add({"d"});
        program.store.Run(1000);
        program.Add({"e"});
        program.store.Run(1000);
        CHECK(stopped);
        const bool inProgress = std::string_view(event) == "Progress";
        CHECK(log.CountOf("Progress") == (inProgress ? 1 : 3));
        CHECK(log.CountOf("Finish") == (inProgress ? 0 : 1));
        CHECK(log.CountOf("Update") == (std::string_view(event) == "Update" ? 1 : 0));
    }
}

TEST_CASE("A handler may drop the last reference to its query, in any of the three events") {
    for (const bool reuseAddresses : {false, true})
        for (const char *event : kEvents) {
            CAPTURE(event);
            QueryProgram program(HostOptions{.reuseAddresses = reuseAddresses});
            program.Add({"a", "b"});
            Object query = program.NewQuery();
            const sim::macos::ProgressWithAddedItems withAdded;
            EventLog log(query, [&](const EventCall &call) {
                if (call.name == event)
                    query.Release();
            });
            query.Call<bool>("Execute", 4);
            program.store.Run(100);
            program.Add({"c"});
            program.store.Run(100);
            CHECK_FALSE(query);
            CHECK(program.Host().Alive("MDQueryQTX") == 0);
            REQUIRE(!log.heard.empty());
            CHECK(log.heard.back().name == event);
        }
}

TEST_CASE("A handler may execute another query, and run it to its end within") {
    for (const char *event : kEvents) {
        CAPTURE(event);
        QueryProgram program;
        program.Add({"a", "b"});
        Object query = program.NewQuery("kMDItemFSName == 'a*'");
        Names inner;
        Events innerEvents;
        EventLog log(query, [&](const EventCall &call) {
            if (call.name != event)
                return;
            Object other = program.NewQuery("kMDItemFSName == 'b*'");
            EventLog otherLog(other);
            program.Gather(other);
            inner = program.Results(other);
            innerEvents = otherLog.Take();
        });
        program.GoLive(query);
        program.Add({"a2"});
        program.Settle();
        CHECK(inner == Names{"b"});
        CHECK(innerEvents == Events{Progress(), Finish()});
        CHECK(log.Take() == Events{Progress(), Finish(), Update({"a2"})});
    }
}

TEST_CASE("A handler may make a live query that goes on by itself") {
    QueryProgram program;
    program.Add({"a", "b"});
    Object query = program.NewQuery("kMDItemFSName == 'a*'"), second;
    std::unique_ptr<EventLog> secondLog;
    EventLog log(query, [&](const EventCall &call) {
        if (call.name != "Finish")
            return;
        second = program.NewQuery("kMDItemFSName == 'b*'");
        secondLog = std::make_unique<EventLog>(second);
        second.Call<bool>("Execute", 4);
    });
    program.GoLive(query);
    program.Settle();
    REQUIRE(secondLog);
    CHECK(secondLog->Take() == Events{Progress(), Finish()});
    program.Add({"b2"});
    program.Settle();
    CHECK(secondLog->Take() == Events{Update({"b2"})});
}

TEST_CASE("A handler may disable updates; nothing more comes until they are enabled") {
    QueryProgram program;
    Object query = program.NewQuery();
    program.GoLive(query);
    EventLog log(query, [&](const EventCall &call) {
        Object sender = call.object;
        sender.Call<void>("DisableUpdates");
    });
    program.Add({"a"});
    program.Settle();
    CHECK(log.Take() == Events{Update({"a"})});
    program.Add({"b"});
    program.store.Run(1000);
    CHECK(log.Take().empty());
    query.Call<void>("EnableUpdates");
    program.Settle();
    CHECK(log.Take() == Events{Update({"b"})});
}

TEST_CASE("A handler may change files: they come with a later update, each change once") {
    QueryProgram program;
    Object query = program.NewQuery();
    program.GoLive(query);
    int round = 0;
    EventLog log(query, [&](const EventCall &) {
        if (++round < 4)
            program.Add("round " + std::to_string(round));
    });
    program.Add({"first"});
    program.store.Run(1000);
    CHECK(log.Take() == Events{Update({"first"}), Update({"round 1"}), Update({"round 2"}), Update({"round 3"})});
}

TEST_CASE("A handler may run the loop: another query reports meanwhile, its own afterwards, each change once") {
    QueryProgram program;
    Object query = program.NewQuery("kMDItemFSName == 'a*'"), other = program.NewQuery("kMDItemFSName == '*'");
    program.GoLive(query);
    program.GoLive(other);
    EventLog ofOther(other);
    Events duringFirst;
    EventLog log(query, [&](const EventCall &) {
        if (log.heard.size() > 1)
            return;
        program.Add({"a2"});
        program.Settle();
        duringFirst = ofOther.Take();
    });
    program.Add({"a1"});
    program.Settle();
    program.Settle();
    CHECK(duringFirst == Events{Update({"a1"}), Update({"a2"})});
    CHECK(log.Take() == Events{Update({"a1"}), Update({"a2"})});
    CHECK(ofOther.Take().empty());
}

TEST_CASE("A handler may replace itself and take the other handlers away") {
    QueryProgram program;
    Object query = program.NewQuery();
    std::vector<std::string> heard;
    query.OnEvent("Finish", [&](const EventCall &) { heard.push_back("finish"); });
    query.OnEvent("Update", [&](const EventCall &call) {
        heard.push_back("first");
        call.object.OnEvent("Update", [&](const EventCall &) { heard.push_back("second"); });
    });
    program.GoLive(query);
    for (const char *name : {"a", "b"}) {
        program.Add({name});
        program.Settle();
    }
    CHECK(heard == std::vector<std::string>{"finish", "first", "second"});
}

TEST_CASE("An exception of a handler stays out of the plugin, and the next event comes as ever") {
    QueryProgram program;
    Object query = program.NewQuery();
    program.GoLive(query);
    EventLog log(query, [](const EventCall &call) {
        if (call.arguments[0].As<Object>().UpperBound() == 0)
            throw std::runtime_error("thrown by the handler");
    });
    program.Add({"a"});
    program.Settle();
    CHECK_THROWS_WITH(program.Host().RethrowFromHandlers(), "thrown by the handler");
    program.Remove("a");
    program.Settle();
    CHECK(log.Take() == Events{Update({"a"}), Update({}, {}, {"a"})});
}

TEST_CASE("An object that dies between a change and its delivery hears nothing of it") {
    for (const bool reuseAddresses : {false, true}) {
        QueryProgram program(HostOptions{.reuseAddresses = reuseAddresses});
        program.Add({"a"});
        Object query = program.NewQuery();
        program.GoLive(query);
        EventLog log(query);
        program.Add({"b"});
        query.Release();
        // A new object, at the same address where addresses come back, is not mistaken for the old one.
        Object next = program.NewQuery();
        EventLog nextLog(next);
        program.store.Run(1000);
        CHECK(log.Take().empty());
        CHECK(nextLog.Take().empty());
    }
}

TEST_CASE("Of two objects that observe one query, the first handler may destroy the second's object") {
    QueryProgram program;
    program.Add({"a"});
    Object query = program.NewQuery();
    program.GoLive(query);
    // A second object observes the first's query too, with the callback of its class.
    Object second = program.NewQuery();
    const auto entry = sim::macos::notifications::EntriesOf(second.Address()).front();
    CFNotificationCenterAddObserver(CFNotificationCenterGetLocalCenter(), second.Address(), entry.callback,
                                    kMDQueryDidUpdateNotification, QueryOf(query), entry.suspensionBehavior);
    int heardBySecond = 0;
    second.OnEvent("Update", [&](const EventCall &) { heardBySecond++; });
    EventLog log(query, [&](const EventCall &) { second.Release(); });
    program.Add({"b"});
    program.Settle();
    CHECK(log.Take() == Events{Update({"b"})});
    CHECK(heardBySecond == 0);
}
