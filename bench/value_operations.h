// One value on its way to a program, and one on its way from it, by the methods that do little else: GetAttribute gives
// what the system has for an attribute, CountOfResultsWithAttributeValue takes what a program has.
#pragma once

#include "bench/operations.h"

namespace bench {

/// What a value is, and how much work it is where that can be more or less.
struct Value {
    const char *name;
    int size = 0;
};

/// The value is borrowed for the call.
void MeasureToHost(const Measure &measure, const Plugin &plugin, const Value &what, CFTypeRef value);
/// Takes the host object over.
void MeasureFromHost(const Measure &measure, const Plugin &plugin, const Value &what, Object *value);

} // namespace bench
