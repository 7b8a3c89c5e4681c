// What the item class's shared methods tell of attributes, known and unknown, without an item.
#include <doctest/doctest.h>

#include "simulator/macos/CoreServices/metadata/schema/schema_attributes.h"
#include "tests/spotlight/support/schema_session.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

using namespace tests;

using sim::macos::AddedSchemaAttribute;

namespace {

constexpr const char *kTextMethods[] = {"DisplayNameForAttribute", "DisplayDescriptionForAttribute"};

} // namespace

TEST_CASE("The five schema methods are declared first, in their order, each with the flags 4") {
    const Names expected = {
        "DisplayNameForAttribute(name as string) as string",
        "DisplayDescriptionForAttribute(name as string) as string",
        "AllAttributes as string()",
        "AttributeType(name as string) as string",
        "AttributeMultiValued(name as string) as boolean",
    };
    AtUsualAges([&](double version) {
        TestSession session(version);
        const auto &methods = session.Host().Arrived().Class("MDItemQTX").sharedMethods;
        REQUIRE(methods.size() > expected.size());
        for (size_t i = 0; i < expected.size(); i++) {
            CHECK(methods[i].declaration == expected[i]);
            CHECK(methods[i].flags == 4);
        }
    });
}

TEST_CASE("DisplayNameForAttribute and DisplayDescriptionForAttribute give the schema's words for an attribute") {
    AtUsualAges([&](double version) {
        SchemaSession session(version);
        const AddedSchemaAttribute added({.name = "com_example_shelf",
                                          .displayName = "\xC3\x89tag\xC3\xA8re",
                                          .displayDescription = "Where it stands"});
        CHECK(session.Ask("DisplayNameForAttribute", "kMDItemFSSize") == Value("Size"));
        CHECK(session.Ask("DisplayDescriptionForAttribute", "kMDItemFSSize") == Value("Size of the file in bytes"));
        CHECK(session.Ask("DisplayNameForAttribute", "com_example_shelf") == Value("\xC3\x89tag\xC3\xA8re"));
        CHECK(session.Ask("DisplayDescriptionForAttribute", "com_example_shelf") == Value("Where it stands"));
        CHECK(session.TakeException() == "");
    });
}

TEST_CASE("An attribute that the schema does not know, or has no words for, has no name and no description") {
    SchemaSession session;
    const AddedSchemaAttribute wordless({.name = "com_example_wordless"});
    for (const char *method : kTextMethods)
        for (const Value &name : {Value("kMDItemUnheardOf"), Value("kmditemfssize"), Value(""), Value(nullptr),
                                  Value(kMalformed), Value("com_example_wordless")})
            CHECK(session.Ask(method, name).IsNil());
    for (const std::string method : kTextMethods) {
        const Fault fault("MDSchemaCopy" + method, 1);
        CHECK(session.Ask(method, "kMDItemFSSize").IsNil());
        CHECK(fault.Failed() == 1);
    }
    CHECK(session.TakeException() == "");
}

TEST_CASE("AllAttributes gives every attribute of the schema, in its order") {
    AtUsualAges([&](double version) {
        SchemaSession session(version);
        const AddedSchemaAttribute added({.name = "com_example_shelf"});
        const auto all = session.All();
        CHECK(all.ClassName() == "string()");
        CHECK(all.References() == 1);
        const auto names = all.As<std::string>();
        const auto expected = CFRef<CFArrayRef>::Adopt(MDSchemaCopyAllAttributes());
        CHECK(names == TextsIn(expected.Get()));
        REQUIRE(names.size() == 170);
        CHECK(names.front() == "kMDItemAttributeChangeDate");
        CHECK(names.back() == "com_example_shelf");
        CHECK(session.TakeException() == "");
    });
}

TEST_CASE("AllAttributes gives an empty array where the schema gives nothing") {
    SchemaSession session;
    const Fault fault("MDSchemaCopyAllAttributes", 1);
    const auto all = session.All();
    REQUIRE(all);
    CHECK(all.UpperBound() == -1);
    CHECK(session.TakeException() == "");
}

TEST_CASE("AllAttributes gives nil on a host that makes no arrays") {
    SchemaSession session(HostOptions{.withheld = {"RuntimeArrayCreateSingleDimBoundedArray"}});
    CHECK(session.All().IsNil());
    CHECK(session.TakeException() == "");
}

TEST_CASE("A name that does not convert is not asked for") {
    SchemaSession session;
    struct Row {
        const char *method;
        const char *call;
    };
    constexpr Row kRows[] = {
        {"DisplayNameForAttribute", "MDSchemaCopyDisplayNameForAttribute"},
        {"DisplayDescriptionForAttribute", "MDSchemaCopyDisplayDescriptionForAttribute"},
        {"AttributeType", "MDSchemaCopyMetaAttributesForAttribute"},
        {"AttributeMultiValued", "MDSchemaCopyMetaAttributesForAttribute"},
    };
    for (const Row &row : kRows) {
        CAPTURE(row.method);
        const Fault fault(row.call);
        session.Ask(row.method, nullptr);
        session.Ask(row.method, kMalformed);
        CHECK(fault.Failed() == 0);
        session.Ask(row.method, "kMDItemFSSize");
        CHECK(fault.Failed() == 1);
    }
}
