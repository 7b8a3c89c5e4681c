// What the metadata store came across while queries gathered. The real system tells nobody; a person who waits for a
// search wants to know how far it is and what it had to leave out.
#pragma once

#include <cstddef>

namespace sim::macos {

struct GatheringCounts {
    /// Files and folders that were looked at.
    std::size_t files = 0;
    /// Folders that may not be read.
    std::size_t unreadableFolders = 0;
    /// Names that are no UTF-8. No file of the real system has such a name, so these are left out.
    std::size_t unnameable = 0;
};

/// The sums of all queries of this process. Implemented in CoreServices.
const GatheringCounts &CountsOfGathering();

} // namespace sim::macos
