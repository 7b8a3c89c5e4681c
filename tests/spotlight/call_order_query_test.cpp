// What each method of a query does, call by call: in which order the host and the system are asked, with which
// arguments, and what is given up when.
#include <doctest/doctest.h>

#include "simulator/macos/control/environment.h"
#include "tests/spotlight/support/asked_texts.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/call_log.h"
#include "tests/support/plugin_watch.h"

using namespace tests;

namespace environment = sim::macos::environment;

namespace {

std::string Observed(const std::string &notification) {
    return "CFNotificationCenterAddObserver(\"" + notification + "\", MDQuery, 4)";
}

/// The calls of a constructor after the conversion of its lists.
CallLines Made(const std::string &call) {
    return {call,
            Observed("kMDQueryProgressNotification"),
            Observed("kMDQueryDidUpdateNotification"),
            Observed("kMDQueryDidFinishNotification"),
            "CFRelease([\"sorting\"])",
            "CFRelease([\"value\"])",
            "CFRelease(" + kQuotedText + ")"};
}

} // namespace

TEST_CASE("A constructor converts text, sorting attributes and value list, makes the query, observes it, and lets go") {
    QueryProgram program;
    const Object values = program.Strings({"value"}), sorting = program.Strings({"sorting"});
    const std::vector<std::string> calls = {kAsk, "CFRelease", "MDQueryCreate", "MDQueryCreateSubset",
                                            "CFNotificationCenterAddObserver"};
    CallLines expected = {Asked(kText), Asked("sorting"), "CFRelease(\"sorting\")", Asked("value"),
                          "CFRelease(\"value\")"};
    const auto behind = [&](const std::string &call) {
        CallLines lines = expected;
        for (const std::string &line : Made(call))
            lines.push_back(line);
        return lines;
    };
    CallLog log(program);
    Object query = program.Host().Create("MDQueryQTX"), subset = program.Host().Create("MDQueryQTX");
    query.Call<void>("Constructor", kText, values, sorting);
    CHECK(log.Take(calls) == behind("MDQueryCreate(" + kQuotedText + ", [\"value\"], [\"sorting\"])"));
    subset.Call<void>("Constructor", query, kText, values, sorting);
    CHECK(log.Take(calls) == behind("MDQueryCreateSubset(MDQuery, " + kQuotedText + ", [\"value\"], [\"sorting\"])"));
}

TEST_CASE("A constructor's object has its query before that is observed") {
    QueryProgram program;
    Object query = program.Host().Create("MDQueryQTX");
    std::vector<bool> hadQuery;
    PluginWatch::Instance().listener = [&](std::string_view function, const uint32_t *) {
        if (function == "CFNotificationCenterAddObserver")
            hadQuery.push_back(QueryOf(query) != nullptr);
    };
    query.Call<void>("Constructor", kText);
    PluginWatch::Instance().listener = {};
    CHECK(hadQuery == std::vector<bool>{true, true, true});
}

TEST_CASE("A list that a constructor does not have is null for the framework, and none is made for it") {
    QueryProgram program;
    const Object source = program.NewQuery(), values = program.Strings({"value"});
    const struct {
        std::vector<Value> arguments;
        std::string call;
    } rows[] = {{{kText}, "MDQueryCreate(" + kQuotedText + ", null, null)"},
                {{kText, values}, "MDQueryCreate(" + kQuotedText + ", [\"value\"], null)"},
                {{source, kText}, "MDQueryCreateSubset(MDQuery, " + kQuotedText + ", null, null)"},
                {{source, kText, values}, "MDQueryCreateSubset(MDQuery, " + kQuotedText + ", [\"value\"], null)"}};
    for (const auto &row : rows) {
        CAPTURE(row.call);
        Object query = program.Host().Create("MDQueryQTX");
        CallLog log(program);
        query.CallWith("Constructor", row.arguments);
        const CallLines lines = log.Take({"CFArrayCreateMutable", "MDQueryCreate", "MDQueryCreateSubset"});
        REQUIRE(!lines.empty());
        CHECK(lines.back() == row.call);
        CHECK(lines.size() == (row.arguments.back() == Value(values) ? 2 : 1));
    }
}

TEST_CASE("A constructor of no text, or of no source, does nothing more, whatever lists it is given") {
    QueryProgram program;
    const Object lists = program.Strings({"value"}), none = program.Host().Create("MDQueryQTX");
    Object query = program.Host().Create("MDQueryQTX");
    CallLog log(program);
    query.Call<void>("Constructor", nullptr, lists, lists);
    query.Call<void>("Constructor", nullptr, kText, lists, lists);
    query.Call<void>("Constructor", none, kText, lists, lists);
    CHECK(log.Take() == CallLines{});
}

TEST_CASE("A text that the framework refuses leaves nothing observed, and lists and text are given up") {
    QueryProgram program;
    Object query = program.Host().Create("MDQueryQTX");
    CallLog log(program);
    query.Call<void>("Constructor", "malformed ==", program.Strings({"value"}), program.Strings({"sorting"}));
    CallLines lines = log.Take({"MDQueryCreate", "CFNotificationCenterAddObserver", "CFRelease"});
    lines.erase(lines.begin(), lines.begin() + 2); // the elements of the lists
    CHECK(lines == CallLines{"MDQueryCreate(\"malformed ==\", [\"value\"], [\"sorting\"])", "CFRelease([\"sorting\"])",
                             "CFRelease([\"value\"])", "CFRelease(\"malformed ==\")"});
}

TEST_CASE("The destructor stops observing, lets go of the query, and then of the Tag") {
    QueryProgram program;
    Object query = program.NewQuery();
    query.Set("Tag", program.Host().NewDate({.year = 2014}));
    CallLog log(program);
    query.Release();
    CHECK(log.Take() ==
          CallLines{"CFNotificationCenterRemoveEveryObserver()", "CFRelease(MDQuery)", "REALUnlockObject(Date)"});
}

TEST_CASE("While a query object gives up its Tag it has no query any more, and at its end it has neither") {
    QueryProgram program;
    Object query = program.NewQuery();
    query.Set("Tag", program.Host().NewDate({.year = 2014}));
    const auto *const words = static_cast<const uint32_t *>(query.Data());
    bool hadQuery = true;
    program.Host().Before("REALUnlockObject", 1, [&] { hadQuery = words[0] != 0; });
    const auto destructor = reinterpret_cast<void (*)(void *)>(program.Host().Arrived().Class("MDQueryQTX").destructor);
    destructor(query.Address());
    CHECK_FALSE(hadQuery);
    CHECK(words[0] == 0);
    CHECK(words[1] == 0);
}

TEST_CASE("On a host that cannot unlock, the Tag is forgotten all the same") {
    QueryProgram program;
    Object query = program.Host().Create("MDQueryQTX");
    query.Set("Tag", program.Host().NewDate({.year = 2014}));
    program.Host().Withhold("REALUnlockObject");
    const auto destructor = reinterpret_cast<void (*)(void *)>(program.Host().Arrived().Class("MDQueryQTX").destructor);
    destructor(query.Address());
    CHECK(static_cast<const uint32_t *>(query.Data())[1] == 0);
    program.Host().ExpectLeft("Date", 1);
}

TEST_CASE("Without a query a method raises and does nothing else: no argument is looked at") {
    environment::SetExports("MDQueryGetSortOptionFlagsForAttribute", true);
    {
        QueryProgram program;
        Object query = program.Host().Create("MDQueryQTX");
        const Object names = program.Strings({"kMDItemFSName"}), item = program.NewItem(program.Add("a"));
        const CallLines raise = CallLog::OfRaising("NilObjectException", "MDQuery Reference is nil");
        const struct {
            const char *method;
            std::vector<Value> arguments;
            /// The array that is made before, by the kind of its elements; 0 for none.
            int32_t made = 0;
        } rows[] = {
            {"CountOfResultsWithAttributeValue", {"kMDItemFSName", "a"}},
            {"AttributeValueOfResultAtIndex", {"kMDItemFSName", uint32_t{0}}},
            {"ValuesOfAttribute", {"kMDItemFSName"}, 4},
            {"IndexOfResult", {item}},
            {"IndexOfResult", {nullptr}},
            {"ResultAtIndex", {0}},
            {"Results", {-1}, 4},
            {"BatchingParameters", {}},
            {"Execute", {4}},
            {"IsGatheringComplete", {}},
            {"ResultCount", {}},
            {"ValueListAttributes", {}, 3},
            {"SortingAttributes", {}, 3},
            {"QueryString", {}},
            {"Stop", {}},
            {"DisableUpdates", {}},
            {"EnableUpdates", {}},
            {"SetMaxCount", {3}},
            {"SetSearchScope", {program.FolderItems({"/files"}), names}},
            {"GetSortOptionFlagsForAttribute", {"kMDItemFSName"}},
            {"SetSortOptionFlagsForAttribute", {"kMDItemFSName", uint32_t{1}}},
            {"SetSortOrder", {names}},
        };
        for (const auto &row : rows) {
            CAPTURE(row.method);
            CallLines expected;
            if (row.made != 0)
                expected.push_back("RuntimeArrayCreateSingleDimBoundedArray(" + std::to_string(row.made) + ", -1)");
            expected.insert(expected.end(), raise.begin(), raise.end());
            if (row.made != 0)
                expected.push_back(row.made == 3 ? "REALUnlockObject(string()[0])" : "REALUnlockObject(variant()[0])");
            CallLog log(program);
            query.CallWith(row.method, row.arguments);
            CHECK(log.Take() == expected);
            CHECK(program.TakeException() == kNilQuery);
        }
        const Object parameters = program.Host().Create("MDQueryBatchingParamsQTX");
        for (const Value &assigned : {Value(parameters), Value(nullptr)}) {
            CallLog log(program);
            query.Set("BatchingParameters", assigned);
            CHECK(log.Take() == raise);
            CHECK(program.TakeException() == kNilQuery);
        }
    }
    environment::Reset();
}

TEST_CASE("Without the system's sort functions no name is converted and no list is made") {
    for (const char *function :
         {"MDQueryGetSortOptionFlagsForAttribute", "MDQuerySetSortOptionFlagsForAttribute", "MDQuerySetSortOrder"})
        environment::SetExports(function, false);
    {
        QueryProgram program;
        Object query = program.NewQuery();
        const Object names = program.Strings({"kMDItemFSName"});
        CallLog log(program);
        query.Call<int32_t>("GetSortOptionFlagsForAttribute", "kMDItemFSName");
        query.Call<bool>("SetSortOptionFlagsForAttribute", "kMDItemFSName", uint32_t{1});
        query.Call<bool>("SetSortOrder", names);
        CHECK(log.Take() == CallLines{});
    }
    environment::Reset();
}

TEST_CASE("Numbers reach the framework as the program gives them: negative ones, unknown flags, the largest") {
    QueryProgram program;
    Object query = program.NewQuery();
    const auto calls = [&](const char *method, const std::vector<Value> &arguments) {
        CallLog log(program);
        query.CallWith(method, arguments);
        CallLines lines = log.Take();
        std::erase_if(lines, [](const std::string &line) { return !line.starts_with("MDQuery"); });
        return lines;
    };
    CHECK(calls("SetMaxCount", {-3}) == CallLines{"MDQuerySetMaxCount(MDQuery, -3)"});
    CHECK(calls("SetMaxCount", {0}) == CallLines{"MDQuerySetMaxCount(MDQuery, 0)"});
    CHECK(calls("SetMaxCount", {INT32_MIN}) == CallLines{"MDQuerySetMaxCount(MDQuery, -2147483648)"});
    CHECK(calls("ResultAtIndex", {-1}) == CallLines{"MDQueryGetResultAtIndex(MDQuery, -1)"});
    CHECK(calls("ResultAtIndex", {INT32_MAX}) == CallLines{"MDQueryGetResultAtIndex(MDQuery, 2147483647)"});
    CHECK(calls("AttributeValueOfResultAtIndex", {"a", uint32_t{0xFFFFFFFF}}) ==
          CallLines{"MDQueryGetAttributeValueOfResultAtIndex(MDQuery, \"a\", -1)"});
    CHECK(calls("Execute", {int32_t{0x7FFFFF00}}) == CallLines{"MDQueryExecute(MDQuery, 2147483392)"});
    CHECK(calls("Execute", {-8}) == CallLines{"MDQueryExecute(MDQuery, -8)"});
}

TEST_CASE("Batching numbers reach the framework in their order, negative ones too, and come back as they went") {
    QueryProgram program;
    Object query = program.NewQuery();
    CallLog log(program);
    program.SetBatches(query, {-1, 2, -3, 4, INT32_MIN, INT32_MAX});
    CHECK(log.Take({"MDQuerySetBatchingParameters"}) ==
          CallLines{"MDQuerySetBatchingParameters(MDQuery, -1, 2, -3, 4, -2147483648, 2147483647)"});
    const auto read = query.Get<Object>("BatchingParameters");
    CHECK(log.Take() ==
          CallLines{"MDQueryGetBatchingParameters(MDQuery)", "PluginNewInstance(\"MDQueryBatchingParamsQTX\")"});
    CHECK(read.Get<int32_t>("firstMaxNum") == -1);
    CHECK(read.Get<int32_t>("updateMaxNum") == INT32_MIN);
}

TEST_CASE("Sort flags that nobody knows reach the framework and come back") {
    environment::SetExports("MDQueryGetSortOptionFlagsForAttribute", true);
    {
        QueryProgram program;
        Object query = program.NewQuery(kText, {}, {"kMDItemFSName"});
        CHECK(query.Call<bool>("SetSortOptionFlagsForAttribute", "kMDItemFSName", uint32_t{0x80000006}));
        CHECK(query.Call<int32_t>("GetSortOptionFlagsForAttribute", "kMDItemFSName") ==
              static_cast<int32_t>(0x80000006));
    }
    environment::Reset();
}
