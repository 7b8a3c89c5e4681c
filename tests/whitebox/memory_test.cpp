// Texts for which there is no memory, where no host can bring that about.
#include <doctest/doctest.h>

#include "host/strings.h"
#include "tests/whitebox/failing_memory.h"
#include "tests/whitebox/small_host.h"

#include <string>

using whitebox::FailingMemory;
using whitebox::HostText;
using whitebox::SmallHost;

TEST_CASE("On hosts below 2013.0, UTF-32 for whose UTF-16 form there is no memory gives null without a call") {
    SmallHost host(2012.5);
    const std::u32string text(200, U'x');
    const auto build = [&] {
        return REALBuildUnicodeString(text.data(), static_cast<int64_t>(text.size()) * 4, kCFStringEncodingUTF32);
    };
    {
        const FailingMemory failing(1);
        CHECK(build() == nullptr);
    }
    CHECK(host.Calls().empty());
    CHECK(host.Take(build()) == HostText{std::string(200, 'x'), kCFStringEncodingUTF8});
}
