// What the query class declares to host code: the rows of its tables, and where its fields lie.
#include <doctest/doctest.h>

#include "tests/spotlight/support/query_program.h"
#include "tests/support/host_ages.h"

using namespace tests;

namespace {

constexpr const char *kLongestConstructor =
    "Constructor(query as MDQueryQTX, queryString as string, valueListAttributes() as string, "
    "sortingAttributes() as string)";

const Names kQueryMethods = {
    "CountOfResultsWithAttributeValue(name as string, Value as variant) as UInt32",
    "AttributeValueOfResultAtIndex(name as string, index as UInt32) as variant",
    "ValuesOfAttribute(name as string) as variant()",
    "IndexOfResult(it as MDItemQTX) as integer",
    "Constructor(queryString as string)",
    "Constructor(queryString as string, valueListAttributes() as string)",
    "Constructor(queryString as string, valueListAttributes() as string, sortingAttributes() as string)",
    "Constructor(query as MDQueryQTX, queryString as string)",
    "Constructor(query as MDQueryQTX, queryString as string, valueListAttributes() as string)",
    kLongestConstructor,
    "ResultAtIndex(index as integer) as MDItemQTX",
    "Results(limit as integer = -1) as MDItemQTX()",
    "BatchingParameters as MDQueryBatchingParamsQTX",
    "Execute(flags as integer) as boolean",
    "IsGatheringComplete as boolean",
    "ResultCount as integer",
    "ValueListAttributes as string()",
    "SortingAttributes as string()",
    "QueryString as string",
    "Stop",
    "DisableUpdates",
    "EnableUpdates",
    "SetMaxCount(size as integer)",
    "SetSearchScope(paths() as folderitem, options() as string)",
    "GetSortOptionFlagsForAttribute(fieldName as string) as integer",
    "SetSortOptionFlagsForAttribute(fieldName as string, flags as UInt32) as Boolean",
    "SetSortOrder(sortingAttrs() as string) as Boolean",
};

const Names kQueryEvents = {
    "Progress(AddedItems() as MDItemQTX, ChangedItems() as MDItemQTX, RemovedItems() as MDItemQTX)",
    "Finish()",
    "Update(AddedItems() as MDItemQTX, ChangedItems() as MDItemQTX, RemovedItems() as MDItemQTX)",
};

template <class Record> Names DeclarationsOf(const std::vector<Record> &records) {
    Names declarations;
    for (const Record &record : records)
        declarations.push_back(record.declaration);
    return declarations;
}

} // namespace

TEST_CASE("The query class declares its 27 methods in their order, each with the flags 4, on every host") {
    AtEveryAge([&](std::optional<double> version) {
        QueryProgram program(HostOptions{.version = version});
        const auto &methods = program.Host().Arrived().Class("MDQueryQTX").methods;
        CHECK(DeclarationsOf(methods) == kQueryMethods);
        for (const auto &method : methods) {
            CHECK(method.flags == 4);
            CHECK(method.function != 0);
            CHECK((method.setterFunction != 0) == method.declaration.starts_with("BatchingParameters"));
        }
    });
}

TEST_CASE("The query class declares Progress, Finish and Update, in this order, on every host") {
    AtEveryAge([&](std::optional<double> version) {
        QueryProgram program(HostOptions{.version = version});
        CHECK(DeclarationsOf(program.Host().Arrived().Class("MDQueryQTX").events) == kQueryEvents);
    });
}

TEST_CASE("The query class has two stored properties, 16 bytes of data, a destructor and no superclass") {
    QueryProgram program;
    const auto &record = program.Host().Arrived().Class("MDQueryQTX");
    REQUIRE(record.properties.size() == 2);
    CHECK(record.properties[0].name == "Handle");
    CHECK(record.properties[0].type == "Integer");
    CHECK(record.properties[0].param == 0);
    CHECK(record.properties[1].name == "Tag");
    CHECK(record.properties[1].type == "Variant");
    CHECK(record.properties[1].param == 4);
    for (const auto &property : record.properties) {
        CHECK(property.flags == 6);
        CHECK(property.getter == 0xFFFFFFFF);
        CHECK(property.setter == 0xFFFFFFFF);
    }
    CHECK(record.superName.empty());
    CHECK(record.dataSize == 16);
    CHECK(record.constructor == 0);
    CHECK(record.destructor != 0);
    CHECK(record.flags == 4);
    CHECK(record.sharedMethods.empty());
}

TEST_CASE("The query class has three numbers and six scope names as constants, each name being its own text") {
    QueryProgram program;
    CHECK(program.Host().Arrived().Class("MDQueryQTX").constants.size() == 9);
    const auto constant = [&](const char *name) { return program.Host().Constant("MDQueryQTX", name); };
    CHECK(constant("kMDQueryReverseSortOrderFlag") == Value(1));
    CHECK(constant("kMDQuerySynchronous") == Value(1));
    CHECK(constant("kMDQueryWantsUpdates") == Value(4));
    for (const char *name : {"kMDQueryScopeHome", "kMDQueryScopeComputer", "kMDQueryScopeNetwork",
                             "kMDQueryScopeAllIndexed", "kMDQueryScopeComputerIndexed", "kMDQueryScopeNetworkIndexed"})
        CHECK(constant(name) == Value(name));
}

TEST_CASE("The class of batching parameters has six stored integers in 32 bytes and nothing else") {
    QueryProgram program;
    const auto &record = program.Host().Arrived().Class("MDQueryBatchingParamsQTX");
    const char *const names[] = {"firstMaxNum",   "firstMaxMS",   "progressMaxNum",
                                 "progressMaxMS", "updateMaxNum", "updateMaxMS"};
    REQUIRE(record.properties.size() == 6);
    for (int32_t i = 0; i < 6; i++) {
        const auto &property = record.properties[static_cast<size_t>(i)];
        CHECK(property.name == names[i]);
        CHECK(property.type == "Integer");
        CHECK(property.flags == 6);
        CHECK(property.getter == 0xFFFFFFFF);
        CHECK(property.setter == 0xFFFFFFFF);
        CHECK(property.param == 4 * i);
    }
    CHECK(record.dataSize == 32);
    CHECK(record.constructor == 0);
    CHECK(record.destructor == 0);
    CHECK(record.flags == 4);
    CHECK(record.methods.empty());
    CHECK(record.events.empty());
    CHECK(record.constants.empty());
    CHECK(record.sharedMethods.empty());
}

TEST_CASE("A query's fields are found where the class record says at that moment") {
    QueryProgram program;
    program.Add({"a"});
    Object early = program.NewQuery();
    CHECK(QueryOf(early) == *static_cast<MDQueryRef *>(early.Data()));
    program.Gather(early);
    CHECK(early.Get<int32_t>("ResultCount") == 1);
    early.Release();

    program.Host().SetForSystemUse("MDQueryQTX", 64);
    Object late = program.NewQuery();
    CHECK(static_cast<char *>(late.Data()) == static_cast<char *>(late.Address()) + 64);
    CHECK(QueryOf(late) == *static_cast<MDQueryRef *>(late.Data()));
    program.Gather(late);
    CHECK(late.Get<int32_t>("ResultCount") == 1);
}
