// Data that is longer than any test could allocate.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <optional>

namespace sim::macos {

/// While it lives, CFDataGetLength answers this length for all data, whose bytes must then not be read.
class ScriptedDataLength {
public:
    explicit ScriptedDataLength(CFIndex length);
    ~ScriptedDataLength();
    ScriptedDataLength(const ScriptedDataLength &) = delete;
    ScriptedDataLength &operator=(const ScriptedDataLength &) = delete;

    /// The length to answer, or nothing.
    static std::optional<CFIndex> Current();
};

} // namespace sim::macos
