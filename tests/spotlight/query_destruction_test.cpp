// The end of a query object: what it gives up, once, and what it leaves alone.
#include <doctest/doctest.h>

#include "simulator/macos/CoreFoundation/notifications.h"
#include "tests/spotlight/support/event_log.h"

using namespace tests;

namespace notifications = sim::macos::notifications;

TEST_CASE("Destroying an object gives up its query") {
    QueryProgram program;
    Object query = program.NewQuery();
    const auto kept = CFRef<MDQueryRef>::Retain(QueryOf(query));
    CHECK(CFGetRetainCount(kept.Get()) == 2);
    query.Release();
    CHECK(CFGetRetainCount(kept.Get()) == 1);
}

TEST_CASE("Destroying an object whose Tag holds a value gives that value up exactly once") {
    for (const bool withQuery : {false, true}) {
        CAPTURE(withQuery);
        QueryProgram program;
        Object query = withQuery ? program.NewQuery() : program.Host().Create("MDQueryQTX");
        const Object date = program.Host().NewDate({.year = 2014});
        query.Set("Tag", date);
        CHECK(date.References() == 2);
        program.Host().ClearLog();
        query.Release();
        CHECK(date.References() == 1);
        CHECK(program.Host().CallCount("REALUnlockObject") == 1);
    }
}

TEST_CASE("Destroying an object without a query touches neither the centre nor any reference") {
    QueryProgram program;
    // Somebody who observes under the object's address: only RemoveEveryObserver would take it off.
    Object query = program.Host().Create("MDQueryQTX");
    void *const address = query.Address();
    CFNotificationCenterAddObserver(
        CFNotificationCenterGetLocalCenter(), address,
        [](CFNotificationCenterRef, void *, CFStringRef, const void *, CFDictionaryRef) {}, nullptr, nullptr,
        CFNotificationSuspensionBehaviorDeliverImmediately);
    program.Host().ClearLog();
    query.Release();
    CHECK(notifications::RegistrationCount(address) == 1);
    CHECK(program.Host().Calls().empty());
    CFNotificationCenterRemoveEveryObserver(CFNotificationCenterGetLocalCenter(), address);
}

TEST_CASE("Whatever Handle holds is what the destructor gives up") {
    QueryProgram program;
    const auto other = CFRef<MDQueryRef>::Adopt(
        MDQueryCreate(kCFAllocatorDefault, MakeString("kMDItemFSName == 'b*'").Get(), nullptr, nullptr));
    Object query = program.NewQuery();
    const MDQueryRef made = QueryOf(query);
    query.Set("Handle", static_cast<int32_t>(reinterpret_cast<intptr_t>(CFRetain(other.Get()))));
    CHECK(query.Get<std::string>("QueryString") == "kMDItemFSName == 'b*'");
    query.Release();
    CHECK(CFGetRetainCount(other.Get()) == 1);
    CHECK(CFGetRetainCount(made) == 1);
    CFRelease(made); // the program took it away from the object and owns it now
}

TEST_CASE("With Handle written to 0 the destructor leaves query and observers to the program") {
    QueryProgram program;
    Object query = program.NewQuery();
    void *const address = query.Address();
    const auto taken = CFRef<MDQueryRef>::Adopt(QueryOf(query));
    query.Set("Handle", 0);
    query.Release();
    CHECK(CFGetRetainCount(taken.Get()) == 1);
    CHECK(notifications::RegistrationCount(address) == 3);
    CFNotificationCenterRemoveEveryObserver(CFNotificationCenterGetLocalCenter(), address);
}

TEST_CASE("On a host that cannot unlock, the Tag's value stays, and nothing else changes") {
    QueryProgram program;
    Object query = program.Host().Create("MDQueryQTX");
    query.Call<void>("Constructor", "a == 1");
    const Object date = program.Host().NewDate({.year = 2014});
    query.Set("Tag", date);
    program.Host().Withhold("REALUnlockObject");
    query.Release();
    CHECK(date.References() == 2);
    CHECK(notifications::RegistrationCount() == 0);
    program.Host().ExpectLeft("Date", 1);
}

TEST_CASE("A query that runs is not stopped before it is given up") {
    QueryProgram program;
    program.Add({"a"});
    Object query = program.NewQuery();
    program.GoLive(query);
    const auto kept = CFRef<MDQueryRef>::Retain(QueryOf(query));
    query.Release();
    program.Add({"b"});
    program.Settle();
    CHECK(MDQueryGetResultCount(kept.Get()) == 2);
}

TEST_CASE("Items that a query gave stay valid after the query is gone") {
    QueryProgram program;
    program.Add({"a"});
    Object query = program.NewQuery();
    program.Gather(query);
    const auto item = query.Call<Object>("ResultAtIndex", 0);
    query.Release();
    CHECK(item.Get<std::string>("FSName") == "a");
}
