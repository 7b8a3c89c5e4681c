// One row of faults against all deeds, on hosts of every age.
#pragma once

#include "tests/faults/fault_matrix.h"

namespace tests::faults {

/// Fails the test for each case that is not in order, and tells how many there were.
void Check(const char *what, Report (FaultMatrix::*row)() const);

} // namespace tests::faults
