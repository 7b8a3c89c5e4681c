// The order in which a query sorts attribute values.
#pragma once

#include <CoreFoundation/CFBase.h>

namespace sim::macos::query {

/// Either value may be null: no value comes before any. Strings compare as a reader would, with numbers in them counted
/// as numbers; data by bytes; a list by its elements. Values of different kinds are kept apart by kind.
CFComparisonResult CompareValues(CFTypeRef one, CFTypeRef other);

} // namespace sim::macos::query
