// The schema through its C interface.
#include "simulator/macos/CoreServices/metadata/schema/schema_attributes.h"
#include "simulator/macos/control/stop.h"
#include "tests/simulator/macos/items/support/reading.h"
#include "tests/simulator/macos/support/balance.h"
#include "tests/support/expected_keys.h"

#include <doctest/doctest.h>

#include <set>

namespace sim::macos {

namespace {

CFRef<CFDictionaryRef> MetaAttributes(std::string_view name) {
    return CFRef<CFDictionaryRef>::Adopt(MDSchemaCopyMetaAttributesForAttribute(String(name).Get()));
}

CFTypeID TypeIDOf(const CFRef<CFDictionaryRef> &metaAttributes) {
    return static_cast<CFTypeID>(Whole(CFDictionaryGetValue(metaAttributes.Get(), kMDAttributeType)));
}

bool IsMultiValued(const CFRef<CFDictionaryRef> &metaAttributes) {
    return Truth(CFDictionaryGetValue(metaAttributes.Get(), kMDAttributeMultiValued));
}

CFTypeID TypeNamed(std::string_view name) {
    return name == "String"    ? CFStringGetTypeID()
           : name == "Number"  ? CFNumberGetTypeID()
           : name == "Date"    ? CFDateGetTypeID()
           : name == "Boolean" ? CFBooleanGetTypeID()
           : name == "Data"    ? CFDataGetTypeID()
           : name == "UUID"    ? CFUUIDGetTypeID()
                               : 0;
}

Value DisplayName(std::string_view name) {
    return Value::Adopt(MDSchemaCopyDisplayNameForAttribute(String(name).Get()));
}

Value DisplayDescription(std::string_view name) {
    return Value::Adopt(MDSchemaCopyDisplayDescriptionForAttribute(String(name).Get()));
}

} // namespace

TEST_CASE("each attribute is described by its name, the type of its values and whether there are several") {
    const tests::Balanced balance;
    for (const ::tests::ExpectedKey &attribute : ::tests::kExpectedKeys) {
        const std::string name(attribute.name);
        CAPTURE(name);
        const auto metaAttributes = MetaAttributes(name);
        REQUIRE(metaAttributes);
        CHECK(CFDictionaryGetCount(metaAttributes.Get()) == 3);
        CHECK(Text(CFDictionaryGetValue(metaAttributes.Get(), kMDAttributeName)) == name);
        CHECK(IsMultiValued(metaAttributes) == attribute.isMultiValued);
        CHECK(TypeIDOf(metaAttributes) ==
              (attribute.isMultiValued ? CFArrayGetTypeID() : TypeNamed(attribute.elementType)));
    }
}

TEST_CASE("each attribute has a name and a description for people, and they are not its key") {
    const tests::Balanced balance;
    for (const ::tests::ExpectedKey &attribute : ::tests::kExpectedKeys) {
        const std::string name(attribute.name);
        CAPTURE(name);
        const std::string displayName = Text(DisplayName(name));
        const std::string description = Text(DisplayDescription(name));
        CHECK(displayName.size() >= 3);
        CHECK(displayName.find("kMD") == std::string::npos);
        CHECK(description.size() > displayName.size());
    }
    CHECK(Text(DisplayName("kMDItemFSSize")) == "Size");
    CHECK(Text(DisplayDescription("kMDItemFSSize")) == "Size of the file in bytes");
}

TEST_CASE("the list of attributes holds each of the system's once, in the order of its headers") {
    const tests::Balanced balance;
    const auto names = Texts(Value::Adopt(MDSchemaCopyAllAttributes()));
    REQUIRE(names.size() == std::size(::tests::kExpectedKeys));
    for (std::size_t i = 0; i < names.size(); i++)
        CHECK(names[i] == ::tests::kExpectedKeys[i].name);
    CHECK(std::set(names.begin(), names.end()).size() == names.size());
}

TEST_CASE("an unknown attribute has no description, no name and no words") {
    const tests::Balanced balance;
    for (const char *name : {"", "kMDItemFSsize", "FSSize", "com_example_color"}) {
        CAPTURE(name);
        CHECK_FALSE(MetaAttributes(name));
        CHECK_FALSE(DisplayName(name));
        CHECK_FALSE(DisplayDescription(name));
    }
}

TEST_CASE("an added attribute of any type is known until its end") {
    const tests::Balanced balance;
    {
        const AddedSchemaAttribute data({.name = "com_example_thumbnail", .type = ElementType::Data});
        const AddedSchemaAttribute dictionary({.name = "com_example_settings", .type = ElementType::Dictionary});
        const AddedSchemaAttribute uuid({.name = "com_example_id", .type = ElementType::UUID});
        const AddedSchemaAttribute boolean({.name = "com_example_flag",
                                            .type = ElementType::Boolean,
                                            .displayName = "Flag",
                                            .displayDescription = "Whether it is marked"});
        CHECK(TypeIDOf(MetaAttributes("com_example_thumbnail")) == CFDataGetTypeID());
        CHECK(TypeIDOf(MetaAttributes("com_example_settings")) == CFDictionaryGetTypeID());
        CHECK(TypeIDOf(MetaAttributes("com_example_id")) == CFUUIDGetTypeID());
        CHECK(TypeIDOf(MetaAttributes("com_example_flag")) == CFBooleanGetTypeID());
        CHECK_FALSE(DisplayName("com_example_id"));
        CHECK(Text(DisplayName("com_example_flag")) == "Flag");
        const auto names = Texts(Value::Adopt(MDSchemaCopyAllAttributes()));
        CHECK(names.size() == 173);
        CHECK(names.back() == "com_example_flag");
    }
    CHECK_FALSE(MetaAttributes("com_example_flag"));
    CHECK(Texts(Value::Adopt(MDSchemaCopyAllAttributes())).size() == 169);
}

TEST_CASE("an attribute can be described by any dictionary, also by one that says nothing") {
    const tests::Balanced balance;
    const auto nothing = CFRef<CFDictionaryRef>::Adopt(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    const AddedSchemaAttribute odd("com_example_odd", nothing.Get());
    CHECK(MetaAttributes("com_example_odd").Get() == nothing.Get());
}

TEST_CASE("adding an attribute that is known already is refused") {
    const tests::Balanced balance;
    const StopsThrow stops;
    CHECK_THROWS_AS(AddedSchemaAttribute({.name = "kMDItemFSSize"}), Stopped);
}

TEST_CASE("each call of the schema fails on demand and recovers") {
    const tests::Balanced balance;
    faults::FailCall("MDSchemaCopyMetaAttributesForAttribute", 1);
    CHECK_FALSE(MetaAttributes("kMDItemFSSize"));
    CHECK(MetaAttributes("kMDItemFSSize"));
    faults::FailCall("MDSchemaCopyDisplayNameForAttribute", 1);
    CHECK_FALSE(DisplayName("kMDItemFSSize"));
    CHECK(DisplayName("kMDItemFSSize"));
    faults::FailCall("MDSchemaCopyDisplayDescriptionForAttribute", 1);
    CHECK_FALSE(DisplayDescription("kMDItemFSSize"));
    CHECK(DisplayDescription("kMDItemFSSize"));
    faults::FailCall("MDSchemaCopyAllAttributes", 1);
    CHECK(MDSchemaCopyAllAttributes() == nullptr);
}

} // namespace sim::macos
