// One host of each age at which something about hosts changed.
#pragma once

#include "simulator/host/ground/options.h"

#include <optional>

namespace sim::validate {

struct HostAge {
    const char *title;
    double version; // 0: does not tell

    host::HostOptions Options() const {
        host::HostOptions options;
        options.version = version > 0 ? std::optional(version) : std::nullopt;
        for (const char *name : {"CGImageQTX", "CFObjectQTX", "CFUUIDQTX"})
            options.companions.push_back({.name = name});
        return options;
    }
};

inline constexpr HostAge kHostAges[] = {
    {"a host that does not tell its age", 0},
    {"a host of 2011.4", 2011.4},
    {"a host of 2012.5", 2012.5},
    {"a host of 2013.0", 2013.0},
    {"a host of 2013.03", 2013.03},
    {"a host of 2013.04", 2013.04},
    {"a host of 2016.1", 2016.1},
    {"a host of the future", 3000},
};

} // namespace sim::validate
