// The names of the attributes as a program imports them.
#include "tests/simulator/macos/items/support/reading.h"
#include "tests/support/expected_keys.h"

#include <doctest/doctest.h>

#include <dlfcn.h>

namespace sim::macos {

TEST_CASE("every attribute name is exported, and its text is the name") {
    CHECK(std::size(::tests::kExpectedKeys) == 169);
    for (const ::tests::ExpectedKey &attribute : ::tests::kExpectedKeys) {
        const std::string name(attribute.name);
        CAPTURE(name);
        const auto symbol = static_cast<const CFStringRef *>(dlsym(RTLD_DEFAULT, name.c_str()));
        REQUIRE(symbol != nullptr);
        CHECK(Text(*symbol) == name);
    }
}

TEST_CASE("the keys of an attribute's description are exported, and their texts are their names") {
    CHECK(Text(kMDAttributeName) == "kMDAttributeName");
    CHECK(Text(kMDAttributeType) == "kMDAttributeType");
    CHECK(Text(kMDAttributeMultiValued) == "kMDAttributeMultiValued");
}

} // namespace sim::macos
