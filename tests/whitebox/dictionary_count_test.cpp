// A dictionary of a host that miscounts.
#include <doctest/doctest.h>

#include "convert/dictionaries.h"
#include "host/services.h"
#include "tests/whitebox/fake_resolver.h"
#include "tests/whitebox/restored.h"

#include <string>

namespace {

int32_t reportedCount = 0;

HostBoolean ReportCount(REALobjectStruct *, const char *property, int32_t *value) {
    CHECK(std::string(property) == "Count");
    *value = reportedCount;
    return 1;
}

} // namespace

TEST_CASE("A dictionary that reports no entries, or fewer than none, is read as an empty one and asked for none") {
    const whitebox::Restored getProperty(REALGetPropValueInteger);
    const whitebox::Restored loadMethod(REALLoadObjectMethod);
    whitebox::FakeResolver resolver;
    resolver.Offer("REALGetPropValueInteger", ReportCount);
    int host = 0;
    for (const int32_t count : {0, -1, INT32_MIN}) {
        CAPTURE(count);
        reportedCount = count;
        const auto read = CopyDictionary(reinterpret_cast<REALobjectStruct *>(&host));
        REQUIRE(read);
        CHECK(CFDictionaryGetCount(read.Get()) == 0);
    }
    CHECK(resolver.Questions("REALLoadObjectMethod") == 0);
}
