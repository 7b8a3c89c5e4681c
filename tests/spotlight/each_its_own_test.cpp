// Several queries and items at the same time: each answers for itself, and again when it is asked again.
#include <doctest/doctest.h>

#include "simulator/macos/CoreServices/metadata/query/query_scope.h"
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

TEST_CASE("AllAttributes gives the same when it is asked for again") {
    QueryProgram program;
    const auto first = program.Host().Shared<Object>("MDItemQTX", "AllAttributes").As<std::string>();
    CHECK(!first.empty());
    CHECK(program.Host().Shared<Object>("MDItemQTX", "AllAttributes").As<std::string>() == first);
}
