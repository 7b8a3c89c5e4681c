// The values that programs asked a query to count, exactly as they arrived: no modelled function of the platform shows
// what a program made of its own values.
#pragma once

#include "simulator/macos/CoreFoundation/ref.h"

#include <vector>

namespace sim::macos {

/// While it lives, every value given to MDQueryGetCountOfResultsWithAttributeValue is kept, retained.
class AskedValues {
public:
    AskedValues();
    ~AskedValues();
    AskedValues(const AskedValues &) = delete;
    AskedValues &operator=(const AskedValues &) = delete;

    /// In the order of the questions; null where the question was about null.
    const std::vector<CFRef<CFTypeRef>> &Values() const { return values_; }

    /// The query's part.
    static void Note(CFTypeRef value);

private:
    AskedValues *previous_;
    std::vector<CFRef<CFTypeRef>> values_;
};

} // namespace sim::macos
