#include <doctest/doctest.h>

#include "tests/faults/check.h"

using namespace tests::faults;

TEST_CASE("Without any one service of the host everything is right or neutral, and in balance") {
    Check("services are missing", &FaultMatrix::WithoutEachService);
}
