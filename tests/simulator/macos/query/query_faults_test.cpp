// Calls that fail: null, and nothing else happens.
#include "simulator/macos/control/faults.h"
#include "tests/simulator/macos/query/support/scripted_query.h"

#include <doctest/doctest.h>

namespace sim::macos {

TEST_CASE("every call of queries that makes or copies an object can fail") {
    ScriptedQuery scripted({"a"}, "kMDItemFSName == '*'", {"kMDItemFSName"}, {"kMDItemFSName"});
    scripted.GoLive();
    const MDQueryRef query = scripted.query.Get();
    const auto text = MakeString("a == 1");
    const auto name = MakeString("kMDItemFSName");

    const auto fails = [](const char *call, auto make) {
        CAPTURE(call);
        faults::FailCall(call, 1);
        CHECK(make() == nullptr);
        CHECK(faults::Failed() == 1);
        const auto made = make(); // only once
        CHECK(made != nullptr);
        faults::Reset();
        return made;
    };
    using Owned = CFRef<CFTypeRef>;
    Owned::Adopt(fails("MDQueryCreate", [&] { return MDQueryCreate(nullptr, text.Get(), nullptr, nullptr); }));
    Owned::Adopt(fails("MDQueryCreateSubset",
                       [&] { return MDQueryCreateSubset(nullptr, query, text.Get(), nullptr, nullptr); }));
    Owned::Adopt(fails("MDQueryCopyQueryString", [&] { return MDQueryCopyQueryString(query); }));
    Owned::Adopt(fails("MDQueryCopyValueListAttributes", [&] { return MDQueryCopyValueListAttributes(query); }));
    Owned::Adopt(fails("MDQueryCopySortingAttributes", [&] { return MDQueryCopySortingAttributes(query); }));
    Owned::Adopt(
        fails("MDQueryCopyValuesOfAttribute", [&] { return MDQueryCopyValuesOfAttribute(query, name.Get()); }));
    fails("MDQueryGetResultAtIndex", [&] { return MDQueryGetResultAtIndex(query, 0); });
}

TEST_CASE("what a query does of its own accord is not counted and does not fail") {
    ScriptedQuery scripted({"a", "b"}, "kMDItemFSName == '*'", {"kMDItemFSName"}, {"kMDItemFSName"});
    faults::Reset();
    scripted.GoLive();
    scripted.Add("c");
    scripted.Settle();
    CHECK(scripted.listener.heard == Notifications{Update({"c"}, {}, {}, 3)});
    CHECK(faults::Count() == 0);
}

TEST_CASE("calls that a handler makes are counted and can fail") {
    ScriptedQuery scripted({"a"});
    const void *item = &scripted;
    scripted.listener.handler = [&](const Notification &, CFDictionaryRef) {
        faults::FailCall("MDQueryGetResultAtIndex", 1);
        item = MDQueryGetResultAtIndex(scripted.query.Get(), 0);
    };
    SUBCASE("asynchronous") {
        REQUIRE(scripted.query.Execute(0));
        scripted.Settle();
    }
    SUBCASE("synchronous") { REQUIRE(scripted.query.Execute(kMDQuerySynchronous)); }
    CHECK(item == nullptr);
}

} // namespace sim::macos
