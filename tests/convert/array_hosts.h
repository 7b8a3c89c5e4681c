// The hosts among which arrays differ.
#pragma once

#include "simulator/host/ground/options.h"

namespace tests {

inline constexpr const char *kArrayHostNames[] = {"a host that shows its elements", "a host without direct elements",
                                                  "a host of 2016"};

/// Those that show their element table, hide it, or are too new to have one.
inline sim::host::HostOptions ArrayHost(int which) {
    sim::host::HostOptions options;
    options.version = which < 2 ? 2013.04 : 2016.0;
    options.directArrayStorage = which == 0;
    return options;
}

} // namespace tests
