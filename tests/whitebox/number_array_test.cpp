// Arrays of numbers of one old host, of which some show their elements and others do not.
#include <doctest/doctest.h>

#include "convert/arrays.h"
#include "convert/values.h"
#include "host/services.h"
#include "tests/whitebox/fake_resolver.h"
#include "tests/whitebox/restored.h"

#include <iterator>

namespace {

int32_t asked = 0;

int32_t Element(_REALarray *, int32_t) {
    asked++;
    return 7;
}

} // namespace

TEST_CASE("Of each array of numbers it is found out anew whether its elements are shown, and those are not asked for") {
    const whitebox::Restored bound(REALGetArrayUBound);
    const whitebox::Restored getter(REALGetArrayValueInteger);
    whitebox::FakeResolver resolver;
    resolver.Offer(
        "RuntimeUBound", +[](_REALarray *) -> int32_t { return 2; });
    resolver.Offer(
        "PluginIntegerArrayGetProc", +[](_REALarray *) { return Element; });
    rbversion = 2013.04;
    int32_t elements[3] = {1, 2, 3};
    for (const bool isShown : {false, true, false}) {
        CAPTURE(isShown);
        // The eighth word is the table.
        void *array[8] = {};
        array[7] = isShown ? elements : nullptr;
        asked = 0;
        const auto convert = ConversionOfArray(kVariantArray + kVariantInt32);
        const auto list = convert(reinterpret_cast<_REALarray *>(array));
        CHECK(CFArrayGetCount(list.Get()) == std::ssize(elements));
        CHECK(asked == (isShown ? 0 : 3));
    }
    rbversion = 0;
}
