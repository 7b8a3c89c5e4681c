// The search scope of a query as it was given, which no modelled function of the platform tells.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreServices/MDQuery.h>

namespace sim::macos {

/// URLs and texts in their order, borrowed from the query; null for a query that was given none. Implemented in
/// CoreServices.
CFArrayRef SearchScopeOf(MDQueryRef query);

} // namespace sim::macos
