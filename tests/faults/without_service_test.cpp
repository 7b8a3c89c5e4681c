#include <doctest/doctest.h>

#include "tests/faults/check.h"
#include "tests/support/plugin_path.h"

using namespace tests::faults;

TEST_CASE("Without any one service of the host everything is right or neutral, and in balance") {
    Check("services are missing", &FaultMatrix::WithoutEachService);
}

TEST_CASE("What goes wrong while a deed gets ready is not held against it") {
    // Nothing else makes a CFString on this host, so no query can be made, and what prepares one raises.
    const FaultMatrix matrix(tests::PluginPath(), kAges[std::size(kAges) - 1]);
    const Report report = matrix.Without({"REALGetStringCFString", "REALLoadGlobalMethod"});
    CHECK(report.cases > 100);
    for (const std::string &complaint : report.complaints)
        FAIL_CHECK(complaint);
}
