// What the item class declares to host code: the rows of its tables, and where its fields lie.
#include <doctest/doctest.h>

#include "tests/spotlight/support/query_program.h"
#include "tests/support/host_ages.h"

using namespace tests;

namespace {

constexpr sim::host::Word kStandard = 0xFFFFFFFF;

const Names kItemMethods = {
    "GetAttributes(names() as string) as dictionary",
    "GetAttribute(name as string) as variant",
    "Constructor(path as folderitem)",
    "AttributeNames as string()",
    "AttributeString(name as string) as string",
    "AttributeBoolean(name as string) as boolean",
    "AttributeDouble(name as string) as double",
    "AttributeStringArray(name as string) as string()",
};

struct PropertyRow {
    const char *name;
    const char *type;
    bool isStored;
    int32_t param;
};

constexpr PropertyRow kItemProperties[] = {
    {"Handle", "Integer", true, 0}, {"Tag", "Variant", true, 4},  {"DisplayName", "String", false, 0},
    {"FSName", "String", false, 0}, {"Path", "String", false, 0}, {"FSSize", "Int64", false, 0},
};

} // namespace

TEST_CASE("The item class declares its eight methods in their order, each with the flags 4, on every host") {
    AtEveryAge([&](std::optional<double> version) {
        TestSession session(HostOptions{.version = version});
        Names declarations;
        for (const auto &method : session.Host().Arrived().Class("MDItemQTX").methods) {
            declarations.push_back(method.declaration);
            CHECK(method.flags == 4);
            CHECK(method.function != 0);
            CHECK(method.setterFunction == 0);
        }
        CHECK(declarations == kItemMethods);
    });
}

TEST_CASE("The item class declares two stored and four computed read-only properties, on every host") {
    AtEveryAge([&](std::optional<double> version) {
        TestSession session(HostOptions{.version = version});
        const auto &properties = session.Host().Arrived().Class("MDItemQTX").properties;
        REQUIRE(properties.size() == std::size(kItemProperties));
        for (size_t i = 0; i < properties.size(); i++) {
            CAPTURE(kItemProperties[i].name);
            CHECK(properties[i].group.empty());
            CHECK(properties[i].name == kItemProperties[i].name);
            CHECK(properties[i].type == kItemProperties[i].type);
            CHECK(properties[i].flags == 6);
            CHECK(properties[i].param == kItemProperties[i].param);
            CHECK(properties[i].setter == (kItemProperties[i].isStored ? kStandard : 0));
            CHECK((properties[i].getter == kStandard) == kItemProperties[i].isStored);
            CHECK(properties[i].getter != 0);
        }
    });
}

TEST_CASE("The item class has a destructor, 16 bytes of data and 174 shared methods, and nothing else") {
    AtEveryAge([&](std::optional<double> version) {
        TestSession session(HostOptions{.version = version});
        const auto &record = session.Host().Arrived().Class("MDItemQTX");
        CHECK(record.superName.empty());
        CHECK(record.dataSize == 16);
        CHECK(record.constructor == 0);
        CHECK(record.destructor != 0);
        CHECK(record.flags == 4);
        CHECK(record.events.empty());
        CHECK(record.constants.empty());
        CHECK(record.sharedProperties.empty());
        CHECK(record.sharedMethods.size() == 174);
    });
}

TEST_CASE("Handle is the first word of an item's data and Tag the second") {
    QueryProgram program;
    const Object item = program.NewItem(program.Add("a"));
    const Object date = program.Host().NewDate({.year = 2014});
    CHECK(static_cast<void *const *>(item.Data())[1] == nullptr);
    item.Set("Tag", date);
    CHECK(static_cast<MDItemRef *>(item.Data())[0] == ItemOf(item));
    CHECK(static_cast<void *const *>(item.Data())[1] == date.Address());
}

TEST_CASE("Host code cannot assign to the computed properties") {
    QueryProgram program;
    const Object item = program.NewItem(program.Add("a"));
    for (const char *property : {"DisplayName", "FSName", "Path"})
        CHECK_THROWS_AS(item.Set(property, "b"), sim::host::ProgramError);
    CHECK_THROWS_AS(item.Set("FSSize", int64_t{1}), sim::host::ProgramError);
}

TEST_CASE("An item's fields are found where the class record says at that moment") {
    QueryProgram program;
    program.Add({"a"});
    Object query = program.NewQuery();
    program.Gather(query);
    for (const int32_t offset : {24, 32, 64}) {
        CAPTURE(offset);
        program.Host().SetForSystemUse("MDItemQTX", offset);
        Object item = query.Call<Object>("ResultAtIndex", 0);
        CHECK(static_cast<char *>(item.Data()) == static_cast<char *>(item.Address()) + offset);
        CHECK(*static_cast<MDItemRef *>(item.Data()) == ItemOf(item));
        CHECK(item.Get<std::string>("FSName") == "a");
        const auto kept = CFRef<MDItemRef>::Retain(ItemOf(item));
        const auto retained = CFGetRetainCount(kept.Get());
        item.Release();
        CHECK(CFGetRetainCount(kept.Get()) == retained - 1);
    }
}
