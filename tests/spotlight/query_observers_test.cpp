// How a query object listens to its query, and when it stops.
#include <doctest/doctest.h>

#include "simulator/macos/CoreFoundation/notifications.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/fault.h"

using namespace tests;

namespace notifications = sim::macos::notifications;

namespace {

void CheckObserves(const Object &query) {
    const auto entries = notifications::EntriesOf(query.Address());
    const CFStringRef names[] = {kMDQueryProgressNotification, kMDQueryDidUpdateNotification,
                                 kMDQueryDidFinishNotification};
    REQUIRE(entries.size() == 3);
    for (size_t i = 0; i < 3; i++) {
        REQUIRE(entries[i].name);
        CHECK(*entries[i].name == sim::macos::CharactersOf(names[i]));
        CHECK(entries[i].object == QueryOf(query));
        CHECK(entries[i].suspensionBehavior == CFNotificationSuspensionBehaviorDeliverImmediately);
    }
}

} // namespace

TEST_CASE("Every constructor that obtains a query observes it three times: progress, update, finish") {
    QueryProgram program;
    const Object names = program.Strings({"kMDItemFSName"});
    const Object source = program.NewQuery();
    const std::vector<std::vector<Value>> arguments = {
        {"a == 1"},         {"a == 1", names},         {"a == 1", names, names},
        {source, "a == 1"}, {source, "a == 1", names}, {source, "a == 1", names, names},
    };
    for (const auto &each : arguments) {
        CAPTURE(each.size());
        Object query = program.Host().Create("MDQueryQTX");
        CHECK(notifications::EntriesOf(query.Address()).empty());
        query.CallWith("Constructor", each);
        CheckObserves(query);
    }
    CHECK(notifications::RegistrationCount() == 3);
}

TEST_CASE("An object observes its own query only") {
    QueryProgram program;
    const Object one = program.NewQuery(), other = program.NewQuery();
    CheckObserves(one);
    CheckObserves(other);
    CHECK(notifications::RegistrationCount() == 6);
}

TEST_CASE("The observers are there from construction on: executing adds none, stopping removes none") {
    QueryProgram program;
    program.Add({"a"});
    Object query = program.NewQuery();
    program.GoLive(query);
    CheckObserves(query);
    query.Call<void>("Stop");
    CheckObserves(query);
}

TEST_CASE("A constructor that obtains no query observes nothing") {
    QueryProgram program;
    Object query = program.Host().Create("MDQueryQTX");
    query.Call<void>("Constructor", "malformed ==");
    query.Call<void>("Constructor", nullptr, "a == 1");
    {
        const Fault fault("MDQueryCreate");
        query.Call<void>("Constructor", "a == 1");
    }
    CHECK(notifications::RegistrationCount() == 0);
}

TEST_CASE("The destructor takes the object off the centre and leaves other objects' observers alone") {
    QueryProgram program;
    Object one = program.NewQuery();
    const Object other = program.NewQuery();
    void *const address = one.Address();
    one.Release();
    CHECK(notifications::RegistrationCount(address) == 0);
    CheckObserves(other);
}

TEST_CASE("The destructor stops observing before it lets go of the query") {
    QueryProgram program;
    program.Add({"a"});
    Object query = program.NewQuery();
    program.GoLive(query);
    // The query outlives the object and goes on; nobody hears of it.
    const auto kept = CFRef<MDQueryRef>::Retain(QueryOf(query));
    int events = 0;
    query.OnEvent("Update", [&](const EventCall &) { events++; });
    query.Release();
    program.Add({"b"});
    program.Settle();
    CHECK(MDQueryGetResultCount(kept.Get()) == 2); // so it was not stopped either
    CHECK(events == 0);
}
