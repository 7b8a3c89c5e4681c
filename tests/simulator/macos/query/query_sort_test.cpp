// The order of results.
#include "simulator/macos/CoreServices/metadata/query/sort_key.h"
#include "tests/simulator/macos/query/support/scripted_query.h"

#include <doctest/doctest.h>

namespace sim::macos {

namespace {

using query::SortKeyOf;

bool SetSortOrder(const TestQuery &query, NameList names) {
    return MDQuerySetSortOrder(query.Get(), Names(names).Get()) != 0;
}

bool SetFlags(const TestQuery &query, std::string_view name, uint32_t flags) {
    return MDQuerySetSortOptionFlagsForAttribute(query.Get(), MakeString(name).Get(), flags) != 0;
}

uint32_t GetFlags(const TestQuery &query, std::string_view name) {
    return MDQueryGetSortOptionFlagsForAttribute(query.Get(), MakeString(name).Get());
}

/// Names in the order of arrival, with a size and a kind each; sorted by kind, then size.
struct Sorted : ScriptedQuery {
    Sorted() : ScriptedQuery({}, "kMDItemFSName == '*'", {}, {"kMDItemKind", "kMDItemFSSize"}) {
        Put("one", "text", 30);
        Put("two", "picture", 20);
        Put("three", "text", 10);
        Put("four", nullptr, 40);
        Put("five", "picture", -1);
    }

    void Put(const char *name, const char *kind, std::int64_t size) {
        const auto file = Add(name);
        if (kind)
            store.Prepare(file, "kMDItemKind", Text(kind).Get());
        if (size >= 0)
            store.Prepare(file, "kMDItemFSSize", Whole(size).Get());
    }
};

} // namespace

TEST_CASE("values are ordered within their kind and kinds are kept apart") {
    tests::Balanced balance;
    std::vector<Value> rising;
    rising.emplace_back(); // none at all
    rising.push_back(Real(std::numeric_limits<double>::quiet_NaN()));
    rising.push_back(Real(-1.5));
    rising.push_back(Truth(false));
    rising.push_back(Truth(true));
    rising.push_back(Real(1.5));
    rising.push_back(Whole(9007199254740992));
    rising.push_back(Whole(9007199254740993));
    rising.push_back(Moment(-5));
    rising.push_back(Moment(5));
    rising.push_back(Text(""));
    rising.push_back(Text("file 9"));
    rising.push_back(Text("file 10"));
    rising.push_back(Text("zebra"));
    rising.push_back(Bytes(""));
    rising.push_back(Bytes("a"));
    rising.push_back(Bytes("ab"));
    rising.push_back(Bytes("\xff"));
    rising.push_back(Texts({}));
    rising.push_back(Texts({"a"}));
    rising.push_back(Texts({"a", "b"}));
    rising.push_back(Texts({"ab"}));
    rising.push_back(Texts({"b"}));
    for (std::size_t one = 0; one < rising.size(); ++one) {
        for (std::size_t other = 0; other < rising.size(); ++other) {
            CAPTURE(one);
            CAPTURE(other);
            const int order = (one > other) - (one < other);
            const int found = SortKeyOf(rising[one].Get()).compare(SortKeyOf(rising[other].Get()));
            CHECK((found > 0) - (found < 0) == order);
        }
    }
}

TEST_CASE("texts that differ only in how they are composed are in no order") {
    CHECK(SortKeyOf(Text("caf\xc3\xa9").Get()) == SortKeyOf(Text("cafe\xcc\x81").Get()));
}

TEST_CASE("strings have the order in which CFStringCompare puts them") {
    const char *const texts[] = {"",        "a",        "A", "\xc3\xa1",     "ab", "file 9",
                                 "file 10", "file 010", "z", "\xe4\xb8\xad", "-",  " "};
    constexpr CFStringCompareFlags kAsAReader = kCFCompareNonliteral | kCFCompareLocalized | kCFCompareNumerically;
    for (const char *one : texts) {
        for (const char *other : texts) {
            CAPTURE(one);
            CAPTURE(other);
            const auto left = MakeString(one), right = MakeString(other);
            const int keys = SortKeyOf(left.Get()).compare(SortKeyOf(right.Get()));
            CHECK((keys > 0) - (keys < 0) == static_cast<int>(CFStringCompare(left.Get(), right.Get(), kAsAReader)));
        }
    }
}

TEST_CASE("without sorting attributes results stand in the order in which they were found") {
    ScriptedQuery scripted({"c", "a", "b"});
    scripted.GoLive();
    CHECK(scripted.query.Results() == FileNames{"c", "a", "b"});
    scripted.Touch("c");
    scripted.Settle();
    CHECK(scripted.query.Results() == FileNames{"c", "a", "b"});
}

TEST_CASE("several attributes sort one after the other, and who lacks one comes first") {
    Sorted sorted;
    sorted.GoLive();
    CHECK(sorted.query.Results() == FileNames{"four", "five", "two", "three", "one"});
}

TEST_CASE("names sort as a reader would, numbers in them by value") {
    ScriptedQuery scripted({"file10", "File9", "file 1", "\xc3\xa9t\xc3\xa9", "zoo", "file9"}, "kMDItemFSName == '*'",
                           {}, {"kMDItemFSName"});
    scripted.GoLive();
    const FileNames results = scripted.query.Results();
    const auto place = [&](const char *name) {
        return std::find(results.begin(), results.end(), name) - results.begin();
    };
    CHECK(place("file9") < place("file10"));
    CHECK(place("File9") < place("file10"));
    CHECK(place("\xc3\xa9t\xc3\xa9") < place("file9"));
    CHECK(place("zoo") == 5);
}

TEST_CASE("results stay sorted as they come, change and go, whatever the batches") {
    ScriptedQuery scripted({"m", "c", "x"}, "kMDItemFSName == '*'", {}, {"kMDItemFSName"});
    scripted.query.SetBatches({1, kNoLimit, 1, kNoLimit, 1, 0});
    REQUIRE(scripted.query.Execute(kMDQueryWantsUpdates));
    scripted.Settle();
    CHECK(scripted.query.Results() == FileNames{"c", "m", "x"});
    scripted.Add("d");
    scripted.Add("a");
    scripted.Settle();
    CHECK(scripted.query.Results() == FileNames{"a", "c", "d", "m", "x"});
    scripted.store.Move(scripted.files["a"], "/files/y");
    scripted.Settle();
    CHECK(scripted.query.Results() == FileNames{"c", "d", "m", "x", "y"});
    scripted.Remove("d");
    scripted.Settle();
    CHECK(scripted.query.Results() == FileNames{"c", "m", "x", "y"});
}

TEST_CASE("the reverse flag turns one attribute around, and who lacks it comes last") {
    Sorted sorted;
    CHECK(SetFlags(sorted.query, "kMDItemKind", kMDQueryReverseSortOrderFlag));
    sorted.GoLive();
    CHECK(sorted.query.Results() == FileNames{"three", "one", "five", "two", "four"});
    CHECK(SetFlags(sorted.query, "kMDItemFSSize", 1));
    CHECK(sorted.query.Results() == FileNames{"one", "three", "two", "five", "four"});
    CHECK(SetFlags(sorted.query, "kMDItemKind", 0));
    CHECK(sorted.query.Results() == FileNames{"four", "two", "five", "one", "three"});
}

TEST_CASE("sort flags are kept for each attribute that the query sorts by, and for no other") {
    Sorted sorted;
    CHECK(GetFlags(sorted.query, "kMDItemKind") == 0);
    CHECK(SetFlags(sorted.query, "kMDItemKind", 1));
    CHECK(GetFlags(sorted.query, "kMDItemKind") == 1);
    CHECK(GetFlags(sorted.query, "kMDItemFSSize") == 0);
    CHECK_FALSE(SetFlags(sorted.query, "kMDItemTitle", 1));
    CHECK(GetFlags(sorted.query, "kMDItemTitle") == 0);
}

TEST_CASE("the sort order can be any of the attributes it was made with") {
    Sorted sorted;
    sorted.GoLive();
    CHECK(SetSortOrder(sorted.query, {"kMDItemFSSize", "kMDItemKind"}));
    CHECK(sorted.query.Results() == FileNames{"five", "three", "two", "one", "four"});
    CHECK(SetSortOrder(sorted.query, {"kMDItemFSSize"}));
    CHECK(sorted.query.Results() == FileNames{"five", "three", "two", "one", "four"});
    CHECK(SetSortOrder(sorted.query, {}));
    CHECK(sorted.query.Results() == FileNames{"one", "two", "three", "four", "five"});
}

TEST_CASE("a sort order with any other attribute is refused and changes nothing") {
    Sorted sorted;
    sorted.GoLive();
    const FileNames before = sorted.query.Results();
    CHECK_FALSE(SetSortOrder(sorted.query, {"kMDItemFSSize", "kMDItemTitle"}));
    CHECK(sorted.query.Results() == before);
    ScriptedQuery unsorted({"a"}, "kMDItemFSName == '*'", {"kMDItemKind"});
    CHECK_FALSE(SetSortOrder(unsorted.query, {"kMDItemKind"})); // only in the value list
}

TEST_CASE("flags given before are used by an order given after") {
    Sorted sorted;
    sorted.GoLive();
    CHECK(SetFlags(sorted.query, "kMDItemFSSize", 1));
    CHECK(SetSortOrder(sorted.query, {"kMDItemFSSize"}));
    CHECK(sorted.query.Results() == FileNames{"four", "one", "two", "three", "five"});
}

TEST_CASE("while updates are disabled not even a new sort order moves the list") {
    Sorted sorted;
    sorted.GoLive();
    const FileNames before = sorted.query.Results();
    MDQueryDisableUpdates(sorted.query.Get());
    CHECK(SetSortOrder(sorted.query, {"kMDItemFSSize"}));
    CHECK(SetFlags(sorted.query, "kMDItemFSSize", 1));
    CHECK(sorted.query.Results() == before);
    MDQueryEnableUpdates(sorted.query.Get());
    sorted.Settle();
    CHECK(sorted.query.Results() == FileNames{"four", "one", "two", "three", "five"});
}

} // namespace sim::macos
