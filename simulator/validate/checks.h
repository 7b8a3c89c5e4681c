// Every check there is, in the order in which they are made.
#pragma once

#include "simulator/validate/check.h"

namespace sim::validate {

inline constexpr int kHighestLevel = 5;

/// The file as its header, its load commands and its sections describe it.
std::vector<Check> FormChecks();
/// What the loader is told to do with it: exports, imports, words that move, frames.
std::vector<Check> LinkChecks();
/// What arrives at hosts of every age.
std::vector<Check> RegistrationChecks();
/// What programs see, beside the native build.
std::vector<Check> BehaviourChecks(uint32_t seed);

} // namespace sim::validate
