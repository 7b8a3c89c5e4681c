#include <doctest/doctest.h>

#include "tests/faults/check.h"

using namespace tests::faults;

TEST_CASE("Without memory for any one allocation everything is right or neutral, and in balance") {
    Check("allocations fail", &FaultMatrix::WithEachAllocationFailing);
}
