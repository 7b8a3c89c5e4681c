// An object without a query: every method raises, gives the neutral value of its type, and does nothing else.
#include <doctest/doctest.h>

#include "simulator/macos/CoreFoundation/notifications.h"
#include "simulator/macos/control/environment.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/host_ages.h"

using namespace tests;

namespace environment = sim::macos::environment;

namespace {

struct MethodRow {
    const char *method;
    std::vector<Value> arguments = {};
    Value neutral = nullptr;
};

/// Every method but the constructors; where one takes arguments they are such as a query would take.
std::vector<MethodRow> MethodsOf(QueryProgram &program, const Object &item) {
    const Object names = program.Strings({"kMDItemFSName"});
    return {
        {"CountOfResultsWithAttributeValue", {"kMDItemFSName", "a"}, uint32_t{0}},
        {"AttributeValueOfResultAtIndex", {"kMDItemFSName", uint32_t{0}}},
        {"ValuesOfAttribute", {"kMDItemFSName"}},
        {"IndexOfResult", {item}, 0},
        {"ResultAtIndex", {0}},
        {"Results", {-1}},
        {"BatchingParameters"},
        {"Execute", {4}, false},
        {"IsGatheringComplete", {}, false},
        {"ResultCount", {}, 0},
        {"ValueListAttributes"},
        {"SortingAttributes"},
        {"QueryString"},
        {"Stop"},
        {"DisableUpdates"},
        {"EnableUpdates"},
        {"SetMaxCount", {3}},
        {"SetSearchScope", {program.FolderItems({"/files"}), program.Strings({"kMDQueryScopeHome"})}},
        {"GetSortOptionFlagsForAttribute", {"kMDItemFSName"}, 0},
        {"SetSortOptionFlagsForAttribute", {"kMDItemFSName", uint32_t{1}}, false},
        {"SetSortOrder", {names}, false},
    };
}

void CheckEachRaises(QueryProgram &program) {
    const Object item = program.NewItem(program.Add("a"));
    Object query = program.Host().Create("MDQueryQTX");
    const auto rows = MethodsOf(program, item);
    CHECK(rows.size() == 27 - 6);
    for (const MethodRow &row : rows) {
        CAPTURE(row.method);
        const Value result = query.CallWith(row.method, row.arguments);
        CHECK(result == row.neutral);
        CHECK(program.TakeException() == kNilQuery);
    }
    query.Set("BatchingParameters", program.Host().Create("MDQueryBatchingParamsQTX"));
    CHECK(program.TakeException() == kNilQuery);
}

} // namespace

TEST_CASE("Without a query every method raises the nil reference and gives the neutral value of its type") {
    AtUsualAges([&](double version) {
        QueryProgram program(version);
        CheckEachRaises(program);
    });
}

TEST_CASE("The nil query is found before any sort function is missed") {
    for (const char *function :
         {"MDQueryGetSortOptionFlagsForAttribute", "MDQuerySetSortOptionFlagsForAttribute", "MDQuerySetSortOrder"})
        environment::SetExports(function, false);
    {
        QueryProgram program;
        CheckEachRaises(program);
    }
    environment::Reset();
}

TEST_CASE("The nil query raises with the number 0") {
    QueryProgram program;
    Object query = program.Host().Create("MDQueryQTX");
    query.Call<void>("Stop");
    const auto raised = program.Host().TakeRaised();
    REQUIRE(raised.size() == 1);
    CHECK(raised.front().errorNumber == 0);
    CHECK(raised.front().messageEncoding == sim::host::kASCII);
}

TEST_CASE("Methods that give an array make it before they miss the query, and give nil") {
    QueryProgram program;
    auto &host = program.Host();
    Object query = host.Create("MDQueryQTX");
    struct Made {
        const char *method;
        const char *call;
    };
    constexpr Made kMade[] = {
        {"ValueListAttributes", "RuntimeArrayCreateSingleDimBoundedArray(3, -1)"},
        {"SortingAttributes", "RuntimeArrayCreateSingleDimBoundedArray(3, -1)"},
        {"Results", "RuntimeArrayCreateSingleDimBoundedArray(4, -1)"},
        {"ValuesOfAttribute", "RuntimeArrayCreateSingleDimBoundedArray(4, -1)"},
    };
    for (const Made &made : kMade) {
        CAPTURE(made.method);
        host.ClearLog();
        std::vector<Value> arguments;
        if (std::string_view(made.method) == "ValuesOfAttribute")
            arguments = {"kMDItemFSName"};
        CHECK(query.CallWith(made.method, arguments).IsNil());
        const auto calls = host.CallNames(true);
        REQUIRE(!calls.empty());
        CHECK(calls.front() == made.call);
        program.TakeException();
    }
}

TEST_CASE("IndexOfResult checks the query before the item") {
    QueryProgram program;
    Object none = program.Host().Create("MDQueryQTX");
    CHECK(none.Call<int32_t>("IndexOfResult", nullptr) == 0);
    CHECK(program.TakeException() == kNilQuery);
    Object query = program.NewQuery();
    CHECK(query.Call<int32_t>("IndexOfResult", nullptr) == 0);
    CHECK(program.TakeException() == kNilItem);
    CHECK(query.Call<int32_t>("IndexOfResult", program.Host().Create("MDItemQTX")) == 0);
    CHECK(program.TakeException() == kNilItem);
}

TEST_CASE("Reading and writing Handle and Tag raises nothing without a query") {
    QueryProgram program;
    const Object query = program.Host().Create("MDQueryQTX");
    CHECK(query.Get<int32_t>("Handle") == 0);
    CHECK(query.Get("Tag").IsNil());
    query.Set("Tag", 7);
    CHECK(query.Get("Tag") == Value(7));
    CHECK(program.Host().Raised().empty());
}
