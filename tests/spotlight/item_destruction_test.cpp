// The end of an item object, and what does not end with a query.
#include <doctest/doctest.h>

#include "tests/spotlight/support/query_program.h"
#include "tests/support/host_ages.h"

using namespace tests;

namespace {

int32_t WordOf(const void *reference) { return static_cast<int32_t>(reinterpret_cast<intptr_t>(reference)); }

} // namespace

TEST_CASE("Destroying an object releases its item once") {
    AtUsualAges([&](double version) {
        QueryProgram program(version);
        Object item = program.NewItem(program.Add("a"));
        const auto kept = CFRef<MDItemRef>::Retain(ItemOf(item));
        CHECK(CFGetRetainCount(kept.Get()) == 2);
        item.Release();
        CHECK(CFGetRetainCount(kept.Get()) == 1);
    });
}

TEST_CASE("Destroying an object whose Tag holds a value gives that value up exactly once") {
    AtUsualAges([&](double version) {
        for (const bool withItem : {false, true}) {
            CAPTURE(withItem);
            QueryProgram program(version);
            Object item = withItem ? program.NewItem(program.Add("a")) : program.Host().Create("MDItemQTX");
            const Object date = program.Host().NewDate({.year = 2014});
            item.Set("Tag", date);
            CHECK(item.Get<Object>("Tag") == date);
            CHECK(date.References() == 2);
            program.Host().ClearLog();
            item.Release();
            CHECK(date.References() == 1);
            CHECK(program.Host().CallCount("REALUnlockObject") == 1);
        }
    });
}

TEST_CASE("Destroying an object with neither item nor Tag calls nothing of the host") {
    QueryProgram program;
    Object item = program.Host().Create("MDItemQTX");
    program.Host().ClearLog();
    item.Release();
    CHECK(program.Host().Calls().empty());
}

TEST_CASE("Destroying an item whose Tag is the item's own query frees both") {
    QueryProgram program;
    program.Add({"a"});
    Object query = program.NewQuery();
    program.Gather(query);
    Object item = query.Call<Object>("ResultAtIndex", 0);
    item.Set("Tag", query);
    query.Release();
    CHECK(program.Host().Alive("MDQueryQTX") == 1);
    item.Release();
    CHECK(program.Host().Alive("MDQueryQTX") == 0);
}

TEST_CASE("Whatever item Handle holds is what the destructor releases") {
    QueryProgram program;
    Object item = program.NewItem(program.Add("a"));
    const MDItemRef taken = ItemOf(item);
    item.Set("Handle", WordOf(program.store.CopyItem(program.Add("b"))));
    CHECK(item.Get<std::string>("FSName") == "b");
    const auto other = CFRef<MDItemRef>::Retain(ItemOf(item));
    item.Release();
    CHECK(CFGetRetainCount(other.Get()) == 1);
    CHECK(CFGetRetainCount(taken) == 1);
    CFRelease(taken); // the program took it away from the object and owns it now
}

TEST_CASE("With Handle written to 0 an object has no item and leaves it to the program") {
    QueryProgram program;
    Object item = program.NewItem(program.Add("a"));
    const auto taken = CFRef<MDItemRef>::Adopt(ItemOf(item));
    item.Set("Handle", 0);
    CHECK(item.Call("AttributeNames").IsNil());
    CHECK(program.TakeException() == kNilItem);
    item.Release();
    CHECK(CFGetRetainCount(taken.Get()) == 1);
}

TEST_CASE("On a host that cannot unlock, the item is released and the Tag's value stays") {
    QueryProgram program;
    Object item = program.NewItem(program.Add("a"));
    const auto kept = CFRef<MDItemRef>::Retain(ItemOf(item));
    const Object date = program.Host().NewDate({.year = 2014});
    item.Set("Tag", date);
    program.Host().Withhold("REALUnlockObject");
    item.Release();
    CHECK(CFGetRetainCount(kept.Get()) == 1);
    CHECK(date.References() == 2);
    program.Host().ExpectLeft("Date", 1);
}

TEST_CASE("Items of every origin stay whole after their query has gone") {
    AtUsualAges([&](double version) {
        QueryProgram program(version);
        program.Add({"a", "b"});
        Object query = program.NewQuery("kMDItemFSName == '*'", {}, {"kMDItemFSName"});
        std::vector<Object> items;
        query.OnEvent("Update", [&items](const EventCall &event) {
            items.push_back(event.arguments[0].As<Object>().At(0).As<Object>());
        });
        program.GoLive(query);
        items.push_back(query.Call<Object>("ResultAtIndex", 0));
        items.push_back(query.Call<Object>("Results").At(1).As<Object>());
        program.Add({"c"});
        program.Settle();
        query.RemoveEvent("Update");
        query.Release();
        CHECK(program.Host().Alive("MDQueryQTX") == 0);
        Names names;
        for (Object &item : items) {
            names.push_back(item.Get<std::string>("FSName"));
            CHECK(item.Call<std::string>("AttributeString", "kMDItemPath") == "/files/" + names.back());
            CHECK(CFGetRetainCount(ItemOf(item)) == 1);
        }
        CHECK(names == Names{"a", "b", "c"});
    });
}
