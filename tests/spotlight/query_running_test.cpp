// Running a query, and asking what it was made of: each method is one call of the framework.
#include <doctest/doctest.h>

#include "tests/spotlight/support/event_log.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

using namespace tests;

TEST_CASE("Execute with updates gives true at once, and the query gathers while the run loop runs") {
    QueryProgram program;
    program.Add({"a", "b"});
    Object query = program.NewQuery();
    CHECK(query.Call<bool>("Execute", program.Host().Constant("MDQueryQTX", "kMDQueryWantsUpdates")));
    CHECK(query.Call<int32_t>("ResultCount") == 0);
    CHECK_FALSE(query.Call<bool>("IsGatheringComplete"));
    program.Settle();
    CHECK(query.Call<int32_t>("ResultCount") == 2);
    CHECK(query.Call<bool>("IsGatheringComplete"));
    program.Add({"c"});
    program.Settle();
    CHECK(query.Call<int32_t>("ResultCount") == 3);
}

TEST_CASE("Execute synchronously returns after gathering, and later changes do not show") {
    QueryProgram program;
    program.Add({"a", "b"});
    program.store.SetPace(1, 10000);
    Object query = program.NewQuery();
    CHECK(query.Call<bool>("Execute", program.Host().Constant("MDQueryQTX", "kMDQuerySynchronous")));
    CHECK(query.Call<bool>("IsGatheringComplete"));
    CHECK(query.Call<int32_t>("ResultCount") == 2);
    program.Add({"c"});
    program.Settle();
    CHECK(query.Call<int32_t>("ResultCount") == 2);
}

TEST_CASE("Execute passes the sum of both flags and no flags at all to the framework unchanged") {
    QueryProgram program;
    program.Add({"a"});
    Object both = program.NewQuery(), neither = program.NewQuery();
    CHECK(both.Call<bool>("Execute", 5));
    CHECK(both.Call<bool>("IsGatheringComplete")); // synchronous
    CHECK(neither.Call<bool>("Execute", 0));
    CHECK_FALSE(neither.Call<bool>("IsGatheringComplete"));
    program.Settle();
    CHECK(neither.Call<bool>("IsGatheringComplete"));
    program.Add({"b"});
    program.Settle();
    CHECK(neither.Call<int32_t>("ResultCount") == 1); // without updates
}

TEST_CASE("Execute gives false when the framework does: a query runs once") {
    QueryProgram program;
    Object query = program.NewQuery();
    CHECK(query.Call<bool>("Execute", 1));
    CHECK_FALSE(query.Call<bool>("Execute", 1));
    CHECK_FALSE(query.Call<bool>("Execute", 4));
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("Stop leaves the results as they are, and the query never becomes complete") {
    QueryProgram program;
    program.Add({"a", "b", "c", "d"});
    program.store.SetPace(2, 100);
    Object query = program.NewQuery();
    EventLog log(query);
    query.Call<bool>("Execute", 4);
    program.store.Run(50);
    query.Call<void>("Stop");
    program.store.Run(1000);
    CHECK(query.Call<int32_t>("ResultCount") == 2);
    CHECK_FALSE(query.Call<bool>("IsGatheringComplete"));
    CHECK(log.CountOf("Finish") == 0);
    CHECK_FALSE(query.Call<bool>("Execute", 4));
}

TEST_CASE("Stop before Execute means that the query will not run") {
    QueryProgram program;
    Object query = program.NewQuery();
    query.Call<void>("Stop");
    CHECK_FALSE(query.Call<bool>("Execute", 4));
}

TEST_CASE("DisableUpdates keeps the results still until EnableUpdates was called as often") {
    QueryProgram program;
    program.Add({"a"});
    Object query = program.NewQuery();
    program.GoLive(query);
    EventLog log(query);
    query.Call<void>("DisableUpdates");
    query.Call<void>("DisableUpdates");
    program.Add({"b"});
    program.Settle();
    query.Call<void>("EnableUpdates");
    program.Settle();
    CHECK(query.Call<int32_t>("ResultCount") == 1);
    CHECK(log.Take().empty());
    query.Call<void>("EnableUpdates");
    program.Settle();
    CHECK(query.Call<int32_t>("ResultCount") == 2);
    CHECK(log.Take() == Events{Update({"b"})});
}

TEST_CASE("SetMaxCount limits the number of results") {
    QueryProgram program;
    program.Add({"a", "b", "c"});
    Object query = program.NewQuery(), unlimited = program.NewQuery();
    query.Call<void>("SetMaxCount", 2);
    program.Gather(query);
    CHECK(query.Call<int32_t>("ResultCount") == 2);
    program.Gather(unlimited);
    CHECK(unlimited.Call<int32_t>("ResultCount") == 3);
}

TEST_CASE("QueryString is the text of the query, whatever characters it has") {
    QueryProgram program;
    for (const std::string text : {"kMDItemFSName == 'a*'", "kMDItemFSName == \"Größe 日本 \xF0\x9F\x98\x80\""}) {
        Object query = program.NewQuery(text);
        CHECK(query.Get<std::string>("QueryString") == text);
    }
}

TEST_CASE("QueryString is nil where the framework gives none") {
    QueryProgram program;
    Object query = program.NewQuery();
    {
        const Fault fault("MDQueryCopyQueryString");
        CHECK(query.Get("QueryString").IsNil());
    }
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("ValueListAttributes and SortingAttributes are the lists that the query was made with, in their order") {
    AtUsualAges([&](double version) {
        QueryProgram program(version);
        Object query = program.NewQuery("a == 1", {"kMDItemKind", "kMDItemFSName"}, {"kMDItemFSSize", "é"});
        CHECK(query.Get<Object>("ValueListAttributes").As<std::string>() == Names{"kMDItemKind", "kMDItemFSName"});
        CHECK(query.Get<Object>("SortingAttributes").As<std::string>() == Names{"kMDItemFSSize", "é"});
    });
}

TEST_CASE("ValueListAttributes and SortingAttributes are empty arrays, not nil, for a query without such lists") {
    QueryProgram program;
    Object query = program.NewQuery();
    for (const char *list : {"ValueListAttributes", "SortingAttributes"}) {
        const auto array = query.Get<Object>(list);
        REQUIRE(array);
        CHECK(array.ClassName() == "string()");
        CHECK(array.UpperBound() == -1);
    }
}

TEST_CASE("The Tag keeps any value of the program's and nobody else touches it") {
    QueryProgram program;
    program.Add({"a"});
    Object query = program.NewQuery();
    CHECK(query.Get("Tag").IsNil());
    const Object date = program.Host().NewDate({.year = 2014});
    query.Set("Tag", date);
    program.GoLive(query);
    query.Call<void>("Stop");
    CHECK(query.Get<Object>("Tag") == date);
}
