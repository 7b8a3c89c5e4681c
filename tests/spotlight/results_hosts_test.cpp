// Results on hosts that lack what results are made with: nothing crashes, and what can be given is given.
#include <doctest/doctest.h>

#include "tests/spotlight/support/event_log.h"

using namespace tests;

namespace {

constexpr const char *kNewInstance = "PluginNewInstance";
constexpr const char *kCreateArray = "RuntimeArrayCreateSingleDimBoundedArray";

/// A host without a service, or with one that gives nothing.
enum class Lack { kEntry, kResult };

HostOptions Without(const char *service, Lack lack) {
    HostOptions options;
    if (lack == Lack::kEntry)
        options.withheld = {service};
    return options;
}

/// A live query with two results; every array of items that an Update brings is looked at by the test.
struct TwoResults : QueryProgram {
    explicit TwoResults(HostOptions options = {}) : QueryProgram(std::move(options)) {
        Add({"a", "b"});
        query = NewQuery("kMDItemFSName == '*'", {"kMDItemFSName"}, {"kMDItemFSName"});
        GoLive(query);
        query.Call<Object>("Results"); // the items are made
    }
    TwoResults(const char *service, Lack lack) : TwoResults(Without(service, lack)) {
        if (lack == Lack::kResult)
            Host().ReturnNothing(service);
    }
    /// The arguments of the one Update that follows.
    std::vector<Value> NextUpdate() {
        std::vector<Value> arguments;
        int updates = 0;
        query.OnEvent("Update", [&](const EventCall &call) {
            arguments = call.arguments;
            updates++;
        });
        Add({"c"});
        Touch("a");
        Settle();
        query.RemoveEvent("Update");
        CHECK(updates == 1);
        return arguments;
    }
    Object query;
};

} // namespace

TEST_CASE("A host that cannot make instances gets nil for a result and nils in their places in Results") {
    for (const Lack lack : {Lack::kEntry, Lack::kResult}) {
        TwoResults program(kNewInstance, lack);
        CHECK(program.query.Call("ResultAtIndex", 0).IsNil());
        CHECK(program.Results(program.query) == Names{"(nil)", "(nil)"});
        CHECK(program.Results(program.query, 1) == Names{"(nil)"});
        CHECK(program.query.Get("BatchingParameters").IsNil());
        CHECK(program.Host().Raised().empty());
    }
}

TEST_CASE("An event's arrays have no gaps: what a host cannot make an object for is left out") {
    for (const Lack lack : {Lack::kEntry, Lack::kResult}) {
        TwoResults program(kNewInstance, lack);
        const auto arguments = program.NextUpdate();
        REQUIRE(arguments.size() == 3);
        for (const Value &array : arguments) {
            REQUIRE(array.As<Object>());
            CHECK(array.As<Object>().UpperBound() == -1);
        }
    }
}

TEST_CASE("An item without an object leaves no gap in an event's array but keeps its place in Results") {
    TwoResults program;
    program.Add({"c"});
    program.Settle();
    program.query.Call<Object>("Results");
    EventLog log(program.query);
    for (const char *name : {"a", "b", "c"})
        program.Touch(name);
    program.Host().ReturnNothing(kNewInstance, 2, 2);
    program.Settle();
    CHECK(log.Take() == Events{Update({}, {"a", "c"})});
    program.Host().Mend(kNewInstance);
    program.Host().ReturnNothing(kNewInstance, 2, 2);
    CHECK(program.Results(program.query) == Names{"a", "(nil)", "c"});
}

TEST_CASE("A host that cannot make arrays gets nil arrays, from methods and with events") {
    for (const Lack lack : {Lack::kEntry, Lack::kResult}) {
        TwoResults program(kCreateArray, lack);
        CHECK(program.query.Call("Results").IsNil());
        CHECK(program.query.Call("ValuesOfAttribute", "kMDItemFSName").IsNil());
        CHECK(program.query.Get("ValueListAttributes").IsNil());
        CHECK(program.query.Get("SortingAttributes").IsNil());
        CHECK(program.NextUpdate() == std::vector<Value>(3));
        CHECK(program.Host().Raised().empty());
    }
}

TEST_CASE("A host without insert functions gets empty arrays, and no object is lost") {
    HostOptions options;
    options.withheld = {"PluginObjectArrayInsertProc", "PluginStringArrayInsertProc",
                        "RuntimeArrayDirectGetInsertProc"};
    TwoResults program(std::move(options));
    const auto isEmpty = [](const Value &array) { return array.As<Object>().UpperBound() == -1; };
    CHECK(isEmpty(program.query.Call("Results")));
    CHECK(isEmpty(program.query.Call("ValuesOfAttribute", "kMDItemFSName")));
    CHECK(isEmpty(program.query.Get("ValueListAttributes")));
    for (const Value &array : program.NextUpdate())
        CHECK(isEmpty(array));
    CHECK(program.Host().Alive("MDItemQTX") == 0);
}

TEST_CASE("A host that hands out no element function once loses that element, and the position counts on") {
    TwoResults program;
    program.Host().ReturnNothing("PluginObjectArrayInsertProc", 1, 1);
    // The second result goes to position 1 of an empty array, which this host refuses.
    const auto results = program.query.Call<Object>("Results");
    CHECK(results.UpperBound() == -1);
    const auto raised = program.Host().TakeRaised();
    REQUIRE(raised.size() == 1);
    CHECK(raised.front().className == "OutOfBoundsException");
    CHECK(program.Host().Alive("MDItemQTX") == 0);
}

TEST_CASE("A host with the older names only gets the same results") {
    HostOptions options;
    options.secondNamesOnly = true;
    TwoResults program(std::move(options));
    CHECK(program.Results(program.query) == Names{"a", "b"});
    CHECK(program.query.Get<Object>("ValueListAttributes").As<std::string>() == Names{"kMDItemFSName"});
    EventLog log(program.query);
    program.Remove("a");
    program.Settle();
    CHECK(log.Take() == Events{Update({}, {}, {"a"})});
}
