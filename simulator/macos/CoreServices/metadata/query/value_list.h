// The values that the results of a query have for one attribute: each one once, with how many results have it.
#pragma once

#include "simulator/macos/CoreServices/metadata/query/result_list.h"

#include <optional>
#include <unordered_map>
#include <vector>

namespace sim::macos::query {

class ValueList {
public:
    /// Reads the values of all results. A value that is an array counts as each of its elements, once for each result.
    ValueList(ResultList &results, std::size_t name);

    /// In the order in which they came up; borrowed.
    const std::vector<CFTypeRef> &Values() const { return values_; }
    /// Of results that have the value; with null, of those that lack the attribute.
    CFIndex CountOf(CFTypeRef value) const;

private:
    struct Hash {
        std::size_t operator()(CFTypeRef value) const { return CFHash(value); }
    };
    struct Equal {
        bool operator()(CFTypeRef one, CFTypeRef other) const { return CFEqual(one, other) != 0; }
    };
    struct Tally {
        CFIndex count = 0;
        std::size_t lastResult = 0;
    };

    void Add(CFTypeRef value, std::size_t result);

    std::vector<CFTypeRef> values_;
    std::vector<CFRef<CFTypeRef>> kept_; // so that values outlive a change of the results
    std::unordered_map<CFTypeRef, Tally, Hash, Equal> tallies_;
    CFIndex lacking_ = 0;
};

} // namespace sim::macos::query
