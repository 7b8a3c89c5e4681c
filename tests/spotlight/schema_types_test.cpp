// The types of attributes as the schema's shared methods name them, and whether they have several values.
#include <doctest/doctest.h>

#include "simulator/macos/CoreServices/metadata/schema/schema_attributes.h"
#include "tests/spotlight/support/item_files.h"
#include "tests/spotlight/support/schema_session.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

using namespace tests;

using sim::host::Text;
using sim::macos::AddedSchemaAttribute;
using sim::macos::ElementType;

namespace {

CFRef<CFMutableDictionaryRef> EmptyDescription() {
    return CFRef<CFMutableDictionaryRef>::Adopt(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
}

template <class Number> CFRef<CFMutableDictionaryRef> WithType(CFNumberType numberType, Number type) {
    auto description = EmptyDescription();
    const auto number = CFRef<CFNumberRef>::Adopt(CFNumberCreate(kCFAllocatorDefault, numberType, &type));
    CFDictionarySetValue(description.Get(), kMDAttributeType, number.Get());
    return description;
}

/// What a host program holds, in the schema's words.
std::string TypeIn(const Value &value) {
    if (value.Is<bool>())
        return "Boolean";
    if (value.Is<int32_t>() || value.Is<int64_t>() || value.Is<double>())
        return "Number";
    if (value.Is<std::string>())
        return "String";
    const auto object = value.As<Object>();
    return object.ClassName() == "Date" ? "Date" : object.ClassName() == "variant()" ? "Array" : object.ClassName();
}

} // namespace

TEST_CASE("AttributeType names booleans, numbers, dates, strings, UUIDs and arrays, and gives nil for other types") {
    struct Row {
        const char *name;
        const char *type;
    };
    constexpr Row kRows[] = {
        {"kMDItemFSInvisible", "Boolean"}, {"kMDItemFSSize", "Number"},  {"kMDItemContentCreationDate", "Date"},
        {"kMDItemTitle", "String"},        {"kMDItemLabelUUID", "UUID"}, {"kMDItemAuthors", "Array"},
        {"kMDItemLabelIcon", ""}, // data
        {"com_example_settings", ""},
    };
    AtUsualAges([&](double version) {
        SchemaSession session(version);
        const AddedSchemaAttribute settings({.name = "com_example_settings", .type = ElementType::Dictionary});
        for (const Row &row : kRows) {
            CAPTURE(row.name);
            CHECK(session.TypeOf(row.name) == row.type);
            const Value given = session.Ask("AttributeType", row.name);
            CHECK(given.IsNil() == std::string_view(row.type).empty());
            if (!given.IsNil())
                CHECK(given.As<Text>().encoding == sim::host::kASCII);
        }
        CHECK(session.TakeException() == "");
    });
}

TEST_CASE(
    "AttributeMultiValued is true for attributes with several values, such as the authors, and false for others") {
    AtUsualAges([&](double version) {
        SchemaSession session(version);
        const AddedSchemaAttribute numbers(
            {.name = "com_example_numbers", .type = ElementType::Number, .isMultiValued = true});
        for (const char *name : {"kMDItemAuthors", "kMDItemKeywords", "com_example_numbers"})
            CHECK(session.IsMultiValued(name));
        for (const char *name : {"kMDItemFSSize", "kMDItemTitle", "kMDItemLabelIcon"})
            CHECK_FALSE(session.IsMultiValued(name));
        CHECK(session.TypeOf("com_example_numbers") == "Array");
        CHECK(session.TakeException() == "");
    });
}

TEST_CASE("An unknown or unconvertible name has no type and is not multi-valued") {
    SchemaSession session;
    for (const Value &name :
         {Value("kMDItemUnheardOf"), Value("kMDItemauthors"), Value(""), Value(nullptr), Value(kMalformed)}) {
        CHECK(session.Ask("AttributeType", name).IsNil());
        CHECK_FALSE(session.IsMultiValued(name));
    }
    for (const char *name : {"kMDItemAuthors", "kMDItemFSSize"}) {
        const Fault fault("MDSchemaCopyMetaAttributesForAttribute");
        CHECK(session.Ask("AttributeType", name).IsNil());
        CHECK_FALSE(session.IsMultiValued(name));
    }
    CHECK(session.TakeException() == "");
}

TEST_CASE("An attribute whose description lacks its type or its number of values has no type, and one value") {
    SchemaSession session;
    const auto nothing = EmptyDescription();
    const AddedSchemaAttribute silent("com_example_silent", nothing.Get());
    CHECK(session.Ask("AttributeType", "com_example_silent").IsNil());
    CHECK_FALSE(session.IsMultiValued("com_example_silent"));
    CHECK(session.TakeException() == "");
}

TEST_CASE("A type is read as a 32-bit number; one that does not fit names nothing") {
    SchemaSession session;
    const auto string = static_cast<SInt64>(CFStringGetTypeID());
    const auto narrow = WithType(kCFNumberSInt16Type, static_cast<SInt16>(string)),
               whole = WithType(kCFNumberDoubleType, static_cast<double>(string)),
               wide = WithType(kCFNumberSInt64Type, string + (SInt64{1} << 32)),
               fraction = WithType(kCFNumberDoubleType, static_cast<double>(string) + 0.5),
               unheardOf = WithType(kCFNumberSInt32Type, SInt32{-1});
    const AddedSchemaAttribute added[] = {{"narrow", narrow.Get()},
                                          {"whole", whole.Get()},
                                          {"wide", wide.Get()},
                                          {"fraction", fraction.Get()},
                                          {"unheard of", unheardOf.Get()}};
    CHECK(session.TypeOf("narrow") == "String");
    CHECK(session.TypeOf("whole") == "String");
    for (const char *name : {"wide", "fraction", "unheard of"}) {
        CAPTURE(name);
        CHECK(session.Ask("AttributeType", name).IsNil());
    }
    CHECK(session.TakeException() == "");
}

TEST_CASE("The schema's descriptions are released") {
    SchemaSession session;
    const auto description = WithType(kCFNumberSInt32Type, static_cast<SInt32>(CFNumberGetTypeID()));
    CFDictionarySetValue(description.Get(), kMDAttributeMultiValued, kCFBooleanTrue);
    const AddedSchemaAttribute added("com_example_counted", description.Get());
    const auto retained = CFGetRetainCount(description.Get());
    CHECK(session.TypeOf("com_example_counted") == "Number");
    CHECK(session.IsMultiValued("com_example_counted"));
    CHECK(CFGetRetainCount(description.Get()) == retained);
}

TEST_CASE("Every attribute that a file has is of the type that AttributeType names, alone and in a dictionary") {
    const TemporaryFolder folder;
    const std::string path = folder.File("letter.txt", "Dear Ann");
    REQUIRE(setxattr(path.c_str(), "user.xdg.tags", "Red,Blue", 8, 0) == 0);
    SchemaSession session;
    auto &host = session.Host();
    Object item = ConstructItem(host, path);
    const auto names = item.Call<Object>("AttributeNames");
    const auto all = item.Call<Object>("GetAttributes", names);
    CHECK(names.UpperBound() > 20);
    CHECK(all.Entries().size() == static_cast<size_t>(names.UpperBound()) + 1);
    for (const std::string &name : names.As<std::string>()) {
        CAPTURE(name);
        const Value alone = item.Call("GetAttribute", name);
        CHECK(TypeIn(alone) == session.TypeOf(name));
        CHECK(TypeIn(all.Lookup(name)) == session.TypeOf(name));
    }
    CHECK(session.TakeException() == "");
}
