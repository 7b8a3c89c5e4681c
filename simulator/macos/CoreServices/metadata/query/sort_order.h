// By which attributes results are sorted, and which of them backwards.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sim::macos::query {

struct SortKey {
    std::size_t name; // which of the values of a result
    std::uint32_t flags = 0;
};

using SortOrder = std::vector<SortKey>;

} // namespace sim::macos::query
