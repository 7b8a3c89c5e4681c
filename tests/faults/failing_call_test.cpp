#include <doctest/doctest.h>

#include "tests/faults/check.h"

using namespace tests::faults;

TEST_CASE("With any one call of the system failing everything is right or neutral, and in balance") {
    Check("calls of the system fail", &FaultMatrix::WithEachCallFailing);
}
