// The order in which a query sorts attribute values, as bytes: what compares less stands before. A value is looked at
// once, when it becomes a result's, and not with each comparison.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <string>

namespace sim::macos::query {

/// Null is no value, which comes before any. Strings compare as a reader would, with numbers in them counted as
/// numbers; data by bytes; a list by its elements. Values of different kinds are kept apart by kind.
std::string SortKeyOf(CFTypeRef value);

} // namespace sim::macos::query
