// Several queries and items at the same time: each answers for itself, and again when it is asked again.
#include <doctest/doctest.h>

#include "simulator/macos/CoreServices/metadata/query/query_scope.h"
#include "tests/spotlight/support/asked_texts.h"
#include "tests/spotlight/support/event_log.h"
#include "tests/spotlight/support/query_program.h"

#include <algorithm>

using namespace tests;

TEST_CASE("Each item has attribute names of its own, and has them again when asked again") {
    QueryProgram program;
    const auto letter = program.Add("letter"), song = program.Add("song");
    program.store.SetText(letter, "kMDItemTitle", "A letter");
    program.store.SetText(song, "kMDItemComposer", "Anna");
    const Object items[] = {program.NewItem(letter), program.NewItem(song)};
    for (int again = 0; again < 2; again++)
        for (size_t i = 0; i < 2; i++) {
            const auto names = items[i].Get<Object>("AttributeNames").As<std::string>();
            CHECK((std::ranges::find(names, "kMDItemTitle") != names.end()) == (i == 0));
            CHECK((std::ranges::find(names, "kMDItemComposer") != names.end()) == (i == 1));
        }
}

TEST_CASE("Scopes of two queries may be of different lengths") {
    QueryProgram program;
    Object queries[] = {program.NewQuery(), program.NewQuery()};
    queries[0].Call<void>("SetSearchScope", program.FolderItems({"/usr"}), program.Strings({}));
    queries[1].Call<void>("SetSearchScope", program.FolderItems({"/usr", "/"}), program.Strings({}));
    CHECK(CFArrayGetCount(sim::macos::SearchScopeOf(QueryOf(queries[0]))) == 1);
    CHECK(CFArrayGetCount(sim::macos::SearchScopeOf(QueryOf(queries[1]))) == 2);
}

TEST_CASE("Subsets of two queries search among the results of their own source") {
    QueryProgram program;
    program.Add({"a", "b"});
    Object sources[] = {program.NewQuery("kMDItemFSName == 'a'"), program.NewQuery("kMDItemFSName == 'b'")};
    const char *const names[] = {"a", "b"};
    for (size_t i = 0; i < 2; i++) {
        program.Gather(sources[i]);
        Object subset = program.Host().Create("MDQueryQTX");
        subset.Call<void>("Constructor", sources[i], "kMDItemFSName == '*'");
        program.Gather(subset);
        CHECK(QueryProgram::Results(subset) == Names{names[i]});
    }
}

TEST_CASE("Each query has batching parameters of its own, whether they are assigned or read") {
    QueryProgram program;
    Object queries[] = {program.NewQuery(), program.NewQuery()};
    for (int32_t i = 0; i < 2; i++)
        program.SetBatches(queries[i], {10 + i, 2, 3, 4, 5, 6});
    for (int32_t i = 0; i < 2; i++)
        CHECK(queries[i].Get<Object>("BatchingParameters").Get<int32_t>("firstMaxNum") == 10 + i);
}

TEST_CASE("Each query has attributes and a highest number of results of its own") {
    QueryProgram program;
    program.Add({"a", "b", "c"});
    Object queries[] = {program.NewQuery(kText, {"kMDItemFSName"}, {"kMDItemFSSize"}),
                        program.NewQuery(kText, {"kMDItemFSSize"}, {"kMDItemFSName"})};
    CHECK(queries[0].Get<Object>("ValueListAttributes").As<std::string>() == Names{"kMDItemFSName"});
    CHECK(queries[1].Get<Object>("ValueListAttributes").As<std::string>() == Names{"kMDItemFSSize"});
    CHECK(queries[0].Get<Object>("SortingAttributes").As<std::string>() == Names{"kMDItemFSSize"});
    CHECK(queries[1].Get<Object>("SortingAttributes").As<std::string>() == Names{"kMDItemFSName"});
    for (int32_t i = 0; i < 2; i++)
        queries[i].Call<void>("SetMaxCount", i + 1);
    for (int32_t i = 0; i < 2; i++) {
        program.Gather(queries[i]);
        CHECK(queries[i].Get<int32_t>("ResultCount") == i + 1);
    }
}

TEST_CASE("Each query has values of its own results") {
    QueryProgram program;
    program.Add({"a", "b"});
    const char *const names[] = {"a", "b"};
    for (const std::string name : names) {
        Object query = program.NewQuery("kMDItemFSName == '" + name + "'", {"kMDItemFSName"});
        program.Gather(query);
        CHECK(query.Call<std::string>("AttributeValueOfResultAtIndex", "kMDItemFSName", uint32_t{0}) == name);
        CHECK(query.Call<Object>("ValuesOfAttribute", "kMDItemFSName").As<std::string>() == Names{name});
    }
}

TEST_CASE("Updates are disabled and enabled for each query by itself") {
    QueryProgram program;
    program.Add({"a"});
    Object queries[] = {program.NewQuery(), program.NewQuery()};
    for (const Object &query : queries)
        program.GoLive(query);
    EventLog first(queries[0]), second(queries[1]);
    for (Object &query : queries)
        query.Call<void>("DisableUpdates");
    program.Add({"b"});
    program.Settle();
    CHECK(first.CountOf("Update") == 0);
    CHECK(second.CountOf("Update") == 0);
    for (Object &query : queries)
        query.Call<void>("EnableUpdates");
    program.Settle();
    CHECK(first.CountOf("Update") == 1);
    CHECK(second.CountOf("Update") == 1);
}

TEST_CASE("Each object gives up a Tag of its own, if it has one") {
    QueryProgram program;
    for (const char *className : {"MDItemQTX", "MDQueryQTX"})
        for (const bool hasTag : {false, true, true}) {
            Object object = program.Host().Create(className);
            if (hasTag)
                object.Set("Tag", program.Host().NewDate({.year = 2014}));
            object.Release();
            CHECK(program.Host().Alive("Date") == 0);
        }
}

TEST_CASE("AllAttributes gives the same when it is asked for again") {
    QueryProgram program;
    const auto first = program.Host().Shared<Object>("MDItemQTX", "AllAttributes").As<std::string>();
    CHECK(!first.empty());
    CHECK(program.Host().Shared<Object>("MDItemQTX", "AllAttributes").As<std::string>() == first);
}
