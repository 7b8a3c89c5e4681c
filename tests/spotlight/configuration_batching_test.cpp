// The batching parameters, both ways.
#include <doctest/doctest.h>

#include "tests/spotlight/support/event_log.h"
#include "tests/support/host_ages.h"

using namespace tests;

namespace {

constexpr const char *kSixNumbers[] = {"firstMaxNum",   "firstMaxMS",   "progressMaxNum",
                                       "progressMaxMS", "updateMaxNum", "updateMaxMS"};

using Six = std::vector<int32_t>;

Six SixOf(const Object &parameters) {
    Six six;
    for (const char *property : kSixNumbers)
        six.push_back(parameters.Get<int32_t>(property));
    return six;
}

/// What the framework's query has.
Six OfFramework(const Object &query) {
    const MDQueryBatchingParams held = MDQueryGetBatchingParameters(QueryOf(query));
    Six six;
    for (const size_t each : {held.first_max_num, held.first_max_ms, held.progress_max_num, held.progress_max_ms,
                              held.update_max_num, held.update_max_ms})
        six.push_back(static_cast<int32_t>(each));
    return six;
}

} // namespace

TEST_CASE("BatchingParameters gives the six numbers of the framework, each in the property of its name") {
    AtUsualAges([&](double version) {
        QueryProgram program(version);
        Object query = program.NewQuery();
        MDQuerySetBatchingParameters(QueryOf(query), {11, 22, 33, 44, 55, 66});
        const auto parameters = query.Get<Object>("BatchingParameters");
        CHECK(parameters.ClassName() == "MDQueryBatchingParamsQTX");
        CHECK(parameters.References() == 1);
        CHECK(SixOf(parameters) == Six{11, 22, 33, 44, 55, 66});
    });
}

TEST_CASE("Assigning BatchingParameters sets the six numbers of the framework, each in its place") {
    AtUsualAges([&](double version) {
        QueryProgram program(version);
        Object query = program.NewQuery();
        program.SetBatches(query, {1, 2, 3, 4, 5, 6});
        CHECK(OfFramework(query) == Six{1, 2, 3, 4, 5, 6});
    });
}

TEST_CASE("What is read can be changed and assigned back; until then the query has its own numbers") {
    QueryProgram program;
    Object query = program.NewQuery();
    program.SetBatches(query, {1, 2, 3, 4, 5, 6});
    const auto parameters = query.Get<Object>("BatchingParameters");
    parameters.Set("firstMaxNum", 100);
    CHECK(OfFramework(query) == Six{1, 2, 3, 4, 5, 6});
    CHECK(SixOf(query.Get<Object>("BatchingParameters")) == Six{1, 2, 3, 4, 5, 6});
    query.Set("BatchingParameters", parameters);
    CHECK(OfFramework(query) == Six{100, 2, 3, 4, 5, 6});
    parameters.Set("firstMaxNum", 200);
    CHECK(OfFramework(query) == Six{100, 2, 3, 4, 5, 6});
}

TEST_CASE("Every read gives a new object") {
    QueryProgram program;
    Object query = program.NewQuery();
    CHECK_FALSE(query.Get<Object>("BatchingParameters") == query.Get<Object>("BatchingParameters"));
}

TEST_CASE("Assigning nil is ignored") {
    QueryProgram program;
    Object query = program.NewQuery();
    program.SetBatches(query, {1, 2, 3, 4, 5, 6});
    query.Set("BatchingParameters", nullptr);
    CHECK(OfFramework(query) == Six{1, 2, 3, 4, 5, 6});
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("Numbers pass unchanged through the framework's unsigned ones") {
    QueryProgram program;
    Object query = program.NewQuery();
    const Six extremes = {0, -1, INT32_MAX, INT32_MIN, 1, -2};
    program.SetBatches(query, extremes);
    CHECK(OfFramework(query) == extremes);
    CHECK(SixOf(query.Get<Object>("BatchingParameters")) == extremes);
}

TEST_CASE("A new object of batching parameters holds zeros") {
    QueryProgram program;
    CHECK(SixOf(program.Host().Create("MDQueryBatchingParamsQTX")) == Six(6));
}

TEST_CASE("A host that cannot make the object gets nil") {
    QueryProgram program;
    Object query = program.NewQuery();
    program.Host().ReturnNothing("PluginNewInstance");
    CHECK(query.Get("BatchingParameters").IsNil());
    CHECK(program.Host().Raised().empty());
}

TEST_CASE("Update batches follow the numbers of the fifth and sixth property, while the query runs too") {
    QueryProgram program;
    Object query = program.NewQuery();
    program.GoLive(query);
    program.SetBatches(query, {kNoLimit, kNoLimit, kNoLimit, kNoLimit, 3, 100});
    EventLog log(query);
    program.Add({"a", "b", "c", "d"});
    program.store.Run(50);
    CHECK(log.Take() == Events{Update({"a", "b", "c"})});
    program.store.Run(100);
    CHECK(log.Take() == Events{Update({"d"})});
    program.SetBatches(query, {kNoLimit, kNoLimit, kNoLimit, kNoLimit, 1, 100});
    program.Add({"e", "f"});
    program.store.Run(50);
    CHECK(log.Take() == Events{Update({"e"}), Update({"f"})});
}
