// What a query knows of its results' attributes: counts, distinct values, and the value of one result.
#include <doctest/doctest.h>

#include "simulator/macos/CoreServices/metadata/query/asked_values.h"
#include "simulator/macos/CoreServices/metadata/query/scripted_values.h"
#include "tests/simulator/macos/query/support/values.h"
#include "tests/spotlight/support/query_program.h"
#include "tests/support/call_log.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

#include <algorithm>

using namespace tests;

namespace {

/// A query that has gathered four songs, sorted by name, with their genre and year in its value list.
struct Songs : QueryProgram {
    explicit Songs(double version = 2013.04) : QueryProgram(version) {
        Song("a", "Jazz", 1959);
        Song("b", "Rock", 1971);
        Song("c", "Jazz", 1971);
        Add({"d"});
        query = NewQuery("kMDItemFSName == '*'", {"kMDItemMusicalGenre", "kMDItemRecordingYear"}, {"kMDItemFSName"});
        Gather(query);
    }
    void Song(const char *name, const char *genre, int64_t year) {
        const File file = Add(std::string(name));
        store.SetText(file, "kMDItemMusicalGenre", genre);
        store.SetNumber(file, "kMDItemRecordingYear", year);
    }
    uint32_t Count(const Value &name, const Value &value) {
        return query.Call<uint32_t>("CountOfResultsWithAttributeValue", name, value);
    }
    Value ValueAt(const Value &name, uint32_t index) {
        return query.Call("AttributeValueOfResultAtIndex", name, index);
    }
    Object Values(const Value &name) { return query.Call<Object>("ValuesOfAttribute", name); }

    Object query;
};

} // namespace

TEST_CASE("CountOfResultsWithAttributeValue counts by texts and numbers of the value list") {
    AtUsualAges([&](double version) {
        Songs songs(version);
        CHECK(songs.Count("kMDItemMusicalGenre", "Jazz") == 2);
        CHECK(songs.Count("kMDItemMusicalGenre", "Rock") == 1);
        CHECK(songs.Count("kMDItemMusicalGenre", "Polka") == 0);
        CHECK(songs.Count("kMDItemRecordingYear", 1971) == 2);
        CHECK(songs.Count("kMDItemRecordingYear", int64_t{1959}) == 1);
        CHECK(songs.Count("kMDItemRecordingYear", 1971.0) == 2);
        CHECK(songs.Count("kMDItemFSSize", "Jazz") == 0); // in none of the lists
        CHECK(songs.Host().Raised().empty());
    });
}

TEST_CASE("CountOfResultsWithAttributeValue gives 0 without asking when name or value has no Core Foundation form") {
    Songs songs;
    const Value noForm = songs.NewQuery(); // an object that stands for no value
    const Value genre = "kMDItemMusicalGenre", jazz = "Jazz";
    const std::pair<Value, Value> kPairs[] = {
        {genre, nullptr}, {genre, noForm}, {nullptr, jazz}, {kMalformed, jazz}, {nullptr, nullptr}};
    for (const auto &pair : kPairs) {
        CAPTURE(pair.first);
        CAPTURE(pair.second);
        CallLog log(songs);
        CHECK(songs.Count(pair.first, pair.second) == 0);
        CHECK(log.Take({"MDQueryGetCountOfResultsWithAttributeValue"}) == CallLines{});
    }
    CHECK(songs.Host().Raised().empty());
}

TEST_CASE("CountOfResultsWithAttributeValue asks once for a value that has a Core Foundation form") {
    Songs songs;
    const sim::macos::AskedValues asked;
    songs.Count("kMDItemMusicalGenre", "Jazz");
    REQUIRE(asked.Values().size() == 1);
    CHECK(CFEqual(asked.Values().front().Get(), MakeString("Jazz").Get()));
    CHECK(CFGetRetainCount(asked.Values().front().Get()) == 1); // the call kept nothing
}

TEST_CASE("AttributeValueOfResultAtIndex gives the value as a variant, of value list and sorting attributes") {
    AtUsualAges([&](double version) {
        Songs songs(version);
        CHECK(songs.ValueAt("kMDItemMusicalGenre", 0) == Value("Jazz"));
        CHECK(songs.ValueAt("kMDItemMusicalGenre", 1) == Value("Rock"));
        CHECK(songs.ValueAt("kMDItemFSName", 2) == Value("c"));
        CHECK(songs.ValueAt("kMDItemRecordingYear", 2).Describe().starts_with("1971"));
    });
}

TEST_CASE("AttributeValueOfResultAtIndex gives nil where the framework has no value, and raises nothing") {
    Songs songs;
    CHECK(songs.ValueAt("kMDItemMusicalGenre", 3).IsNil()); // the file lacks it
    CHECK(songs.ValueAt("kMDItemFSSize", 0).IsNil());       // in none of the lists
    CHECK(songs.ValueAt("kMDItemMusicalGenre", 4).IsNil()); // no such result
    CHECK(songs.ValueAt("kMDItemMusicalGenre", UINT32_MAX).IsNil());
    CHECK(songs.ValueAt("kMDItemMusicalGenre", 0x80000000).IsNil());
    CHECK(songs.ValueAt(nullptr, 0).IsNil());
    CHECK(songs.ValueAt(kMalformed, 0).IsNil());
    CHECK(songs.Host().Raised().empty());
}

TEST_CASE("AttributeValueOfResultAtIndex borrows the framework's value") {
    Songs songs;
    const void *value =
        MDQueryGetAttributeValueOfResultAtIndex(QueryOf(songs.query), MakeString("kMDItemMusicalGenre").Get(), 0);
    const CFIndex retained = CFGetRetainCount(value);
    for (int i = 0; i < 3; i++)
        songs.ValueAt("kMDItemMusicalGenre", 0);
    CHECK(CFGetRetainCount(value) == retained);
}

TEST_CASE("ValuesOfAttribute gives each distinct value of a value-list attribute once") {
    AtUsualAges([&](double version) {
        Songs songs(version);
        auto genres = songs.Values("kMDItemMusicalGenre").As<std::string>();
        std::sort(genres.begin(), genres.end());
        CHECK(genres == Names{"Jazz", "Rock"});
        const Object years = songs.Values("kMDItemRecordingYear");
        CHECK(years.ClassName() == "variant()");
        CHECK(years.UpperBound() == 1);
        CHECK(years.References() == 1);
    });
}

TEST_CASE("ValuesOfAttribute gives an empty array, not nil, for what is not in the value list") {
    Songs songs;
    for (const Value &name : {Value("kMDItemFSName"), Value("kMDItemFSSize"), Value("nonsense"), Value(""),
                              Value(nullptr), Value(kMalformed)}) {
        CAPTURE(name);
        const Object values = songs.Values(name);
        REQUIRE(values);
        CHECK(values.UpperBound() == -1);
    }
    CHECK(songs.Host().Raised().empty());
}

TEST_CASE("ValuesOfAttribute gives an empty array where the framework gives none") {
    Songs songs;
    const Fault fault("MDQueryCopyValuesOfAttribute", 1);
    const Object values = songs.Values("kMDItemMusicalGenre");
    REQUIRE(values);
    CHECK(values.UpperBound() == -1);
}

TEST_CASE("A value that the host cannot hold keeps its place in ValuesOfAttribute as nil") {
    Songs songs;
    songs.Host().Withhold("StringToVariant");
    const Object genres = songs.Values("kMDItemMusicalGenre");
    CHECK(genres.As<Object>() == std::vector<Object>(2));
    CHECK(songs.Host().Raised().empty());
}

TEST_CASE("Nulls among the framework's values leave no gap in ValuesOfAttribute") {
    Songs songs;
    const auto genres = songs.Values("kMDItemMusicalGenre").As<std::string>();
    const sim::macos::ValuesWithNulls nulls;
    CHECK(genres.size() == 2);
    CHECK(songs.Values("kMDItemMusicalGenre").As<std::string>() == genres);
}

TEST_CASE("Values of every kind reach the program: texts, numbers, truth, dates and lists") {
    QueryProgram program;
    const auto file = program.Add("a");
    namespace made = sim::macos;
    program.store.Set(file, "x_text", made::Text("t").Get());
    program.store.Set(file, "x_truth", made::Truth(true).Get());
    program.store.Set(file, "x_real", made::Real(0.5).Get());
    program.store.Set(file, "x_date", made::Moment(made::Date(2014, 6, 30, 15, 4, 5)).Get());
    program.store.Set(file, "x_list", made::Texts({"one", "two"}).Get());
    const Names names = {"x_text", "x_truth", "x_real", "x_date", "x_list"};
    Object query = program.NewQuery("kMDItemFSName == 'a'", names);
    program.Gather(query);
    const auto value = [&](const char *name) { return query.Call("AttributeValueOfResultAtIndex", name, uint32_t{0}); };
    CHECK(value("x_text") == Value("t"));
    CHECK(value("x_truth") == Value(true));
    CHECK(value("x_real") == Value(0.5));
    const auto date = value("x_date").As<sim::host::Object>().Date();
    CHECK(date == sim::host::DateFields{2014, 6, 30, 15, 4, 5});
    CHECK(value("x_list").As<Object>().As<std::string>() == Names{"one", "two"});
    CHECK(query.Call<uint32_t>("CountOfResultsWithAttributeValue", "x_truth", true) == 1);
    CHECK(query.Call<uint32_t>("CountOfResultsWithAttributeValue", "x_date",
                               program.Host().NewDate({2014, 6, 30, 15, 4, 5})) == 1);
}
