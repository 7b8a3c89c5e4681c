#include <doctest/doctest.h>

#include "tests/faults/check.h"

using namespace tests::faults;

TEST_CASE("With any one service throwing everything is right, neutral or comes out, and is in balance") {
    Check("services throw", &FaultMatrix::WithEachServiceThrowing);
}
