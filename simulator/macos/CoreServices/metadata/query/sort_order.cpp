#include "simulator/macos/CoreServices/metadata/query/sort_order.h"

#include "simulator/macos/CoreServices/metadata/query/value_order.h"

#include <CoreServices/MDQuery.h>

namespace sim::macos::query {

bool StandsBefore(const Result &one, const Result &other, const SortOrder &order) {
    for (const SortKey &key : order) {
        const auto comparison = CompareValues(one.Value(key.name), other.Value(key.name));
        if (comparison == kCFCompareEqualTo)
            continue;
        const bool reversed = (key.flags & kMDQueryReverseSortOrderFlag) != 0;
        return (comparison == kCFCompareLessThan) != reversed;
    }
    return one.Arrival() < other.Arrival();
}

} // namespace sim::macos::query
