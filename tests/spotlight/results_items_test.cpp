// Results as item objects: one, some or all of them, and where one stands.
#include <doctest/doctest.h>

#include "tests/spotlight/support/query_program.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

using namespace tests;

namespace {

/// A query that has gathered three files, in the order of their names.
struct ThreeResults : QueryProgram {
    explicit ThreeResults(double version = 2013.04) : QueryProgram(version) {
        Add({"a", "b", "c"});
        query = NewQuery("kMDItemFSName == '*'", {}, {"kMDItemFSName"});
        Gather(query);
    }
    Object query;
};

} // namespace

TEST_CASE("ResultAtIndex gives an item object that keeps the result by a reference of its own") {
    AtUsualAges([&](double version) {
        ThreeResults program(version);
        auto item = program.query.Call<Object>("ResultAtIndex", 1);
        REQUIRE(item);
        CHECK(item.ClassName() == "MDItemQTX");
        CHECK(item.References() == 1);
        CHECK(item.Get<std::string>("FSName") == "b");
        CHECK(item.Get("Tag").IsNil());
        const MDItemRef result =
            static_cast<MDItemRef>(const_cast<void *>(MDQueryGetResultAtIndex(QueryOf(program.query), 1)));
        CHECK(ItemOf(item) == result);
        const auto retained = CFGetRetainCount(result);
        item.Release();
        CHECK(CFGetRetainCount(result) == retained - 1);
    });
}

TEST_CASE("ResultAtIndex makes a new object each time, for the same item") {
    ThreeResults program;
    const auto one = program.query.Call<Object>("ResultAtIndex", 0),
               same = program.query.Call<Object>("ResultAtIndex", 0);
    CHECK_FALSE(one == same);
    CHECK(ItemOf(one) == ItemOf(same));
}

TEST_CASE("ResultAtIndex passes any index to the framework; where that gives nil it gives nil without raising") {
    ThreeResults program;
    for (const int32_t index : {3, 4, -1, INT32_MAX, INT32_MIN}) {
        CAPTURE(index);
        CHECK(program.query.Call("ResultAtIndex", index).IsNil());
    }
    Object idle = program.NewQuery();
    CHECK(idle.Call("ResultAtIndex", 0).IsNil());
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("Results(limit) gives so many results, and all of them for 0, for less, and for more than there are") {
    struct Row {
        int32_t limit;
        Names results;
    };
    const Names all = {"a", "b", "c"};
    const Row rows[] = {{-1, all}, {0, all}, {1, {"a"}}, {2, {"a", "b"}},  {3, all},
                        {4, all},  {5, all}, {-2, all},  {INT32_MIN, all}, {INT32_MAX, all}};
    AtUsualAges([&](double version) {
        ThreeResults program(version);
        for (const Row &row : rows) {
            CAPTURE(row.limit);
            CHECK(program.Results(program.query, row.limit) == row.results);
        }
        CHECK(NamesIn(program.query.Call<Object>("Results")) == all); // the declared default
    });
}

TEST_CASE("Results of a query without results is an empty array, not nil") {
    QueryProgram program;
    Object query = program.NewQuery();
    for (const bool executed : {false, true}) {
        CAPTURE(executed);
        if (executed)
            program.Gather(query);
        for (const int32_t limit : {-1, 0, 1, 5}) {
            const auto results = query.Call<Object>("Results", limit);
            REQUIRE(results);
            CHECK(results.UpperBound() == -1);
        }
    }
}

TEST_CASE("The array that Results gives holds the only reference to each of its items") {
    ThreeResults program;
    auto results = program.query.Call<Object>("Results");
    CHECK(results.References() == 1);
    CHECK(program.Host().Alive("MDItemQTX") == 3);
    for (const Object &item : results.As<Object>())
        CHECK(item.References() == 2); // the array's and that of the loop
    results.Release();
    CHECK(program.Host().Alive("MDItemQTX") == 0);
}

TEST_CASE("A result for which the framework gives no item keeps its place in Results as nil") {
    ThreeResults program;
    {
        const Fault fault("MDQueryGetResultAtIndex", 2);
        CHECK(program.Results(program.query) == Names{"a", "(nil)", "c"});
    }
    const Fault fault("MDQueryGetResultAtIndex", 1);
    CHECK(program.query.Call("ResultAtIndex", 0).IsNil());
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("IndexOfResult finds every result where ResultAtIndex has it, by any object of that item") {
    ThreeResults program;
    for (int32_t index = 0; index < 3; index++)
        CHECK(program.query.Call<int32_t>("IndexOfResult", program.query.Call<Object>("ResultAtIndex", index)) ==
              index);
    // Another object of the system for the same file.
    CHECK(program.query.Call<int32_t>("IndexOfResult", program.NewItem(program.FileNamed("c"))) == 2);
}

TEST_CASE("IndexOfResult of an item from another query is -1, and nothing is raised") {
    ThreeResults program;
    const auto foreign = program.Add("d");
    Object other = program.NewQuery("kMDItemFSName == 'd'");
    program.Gather(other);
    const auto item = other.Call<Object>("ResultAtIndex", 0);
    CHECK(program.query.Call<int32_t>("IndexOfResult", item) == -1);
    CHECK(program.query.Call<int32_t>("IndexOfResult", program.NewItem(foreign)) == -1);
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("IndexOfResult follows the list as it changes") {
    QueryProgram program;
    program.Add({"b", "c"});
    Object query = program.NewQuery("kMDItemFSName == '*'", {}, {"kMDItemFSName"});
    program.GoLive(query);
    const auto item = query.Call<Object>("ResultAtIndex", 1);
    CHECK(query.Call<int32_t>("IndexOfResult", item) == 1);
    program.Add({"a"});
    program.Settle();
    CHECK(query.Call<int32_t>("IndexOfResult", item) == 2);
    program.Remove("c");
    program.Settle();
    CHECK(query.Call<int32_t>("IndexOfResult", item) == -1);
}
