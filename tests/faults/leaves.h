// What a call gave, taken apart: one text for each value that holds no others.
#pragma once

#include "simulator/host/program/object.h"

#include <string>
#include <vector>

namespace tests::faults {

using Leaves = std::vector<std::string>;

/// The elements of arrays, the keys and values of dictionaries, deep inside too; objects by their class.
void AddLeaves(Leaves &leaves, const sim::host::Value &value);

/// What is there in place of a value that could not be made.
bool IsNeutral(const std::string &leaf);

} // namespace tests::faults
