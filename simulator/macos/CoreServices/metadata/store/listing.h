// Which names of a folder the metadata store lists, and the count of what it came across.
#pragma once

#include "simulator/macos/control/gathering.h"

#include <string>

namespace sim::macos::store {

/// Names that begin with a dot are not listed, and none that is not UTF-8: it could be put into no string.
bool IsListed(const std::string &name);

/// Whether only its bytes keep a name from being listed.
bool IsUnnameable(const std::string &name);

/// To be counted up by whoever gathers.
GatheringCounts &Counts();

} // namespace sim::macos::store
