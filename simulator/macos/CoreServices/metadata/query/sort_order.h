// By which attributes results are sorted, and which of them backwards.
#pragma once

#include "simulator/macos/CoreServices/metadata/query/result.h"

#include <cstdint>
#include <vector>

namespace sim::macos::query {

struct SortKey {
    std::size_t name; // which of the values of a result
    std::uint32_t flags = 0;
};

using SortOrder = std::vector<SortKey>;

/// Whether one result stands before another. Results that the keys do not tell apart stand in the order of arrival.
bool StandsBefore(const Result &one, const Result &other, const SortOrder &order);

} // namespace sim::macos::query
