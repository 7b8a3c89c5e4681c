#include "tests/faults/check.h"

#include "tests/support/plugin_path.h"

#include <doctest/doctest.h>

#include <cstdio>

namespace tests::faults {

void Check(const char *what, Report (FaultMatrix::*row)() const) {
    Report report;
    for (const double version : kAges)
        report += (FaultMatrix(PluginPath(), version).*row)();
    for (const std::string &complaint : report.complaints)
        FAIL_CHECK(complaint);
    CHECK(report.cases > 0);
    std::printf("\nexecuted: %llu cases in which %s, on hosts of %zu ages\n",
                static_cast<unsigned long long>(report.cases), what, std::size(kAges));
}

} // namespace tests::faults
