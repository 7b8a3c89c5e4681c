#include "simulator/macos/CoreServices/metadata/query/value_list.h"

namespace sim::macos::query {

ValueList::ValueList(ResultList &results, std::size_t name) {
    for (std::size_t index = 0; index < results.Count(); ++index) {
        const CFTypeRef value = results.At(index).Value(name);
        if (!value) {
            ++lacking_;
            continue;
        }
        if (CFGetTypeID(value) != CFArrayGetTypeID()) {
            Add(value, index + 1);
            continue;
        }
        const auto array = static_cast<CFArrayRef>(value);
        for (CFIndex element = 0; element < CFArrayGetCount(array); ++element)
            Add(CFArrayGetValueAtIndex(array, element), index + 1);
    }
}

CFIndex ValueList::CountOf(CFTypeRef value) const {
    if (!value)
        return lacking_;
    const auto found = tallies_.find(value);
    return found == tallies_.end() ? 0 : found->second.count;
}

void ValueList::Add(CFTypeRef value, std::size_t result) {
    const auto [place, isNew] = tallies_.try_emplace(value);
    if (isNew) {
        values_.push_back(value);
        kept_.push_back(CFRef<CFTypeRef>::Retain(value));
    }
    Tally &tally = place->second;
    tally.count += tally.lastResult != result;
    tally.lastResult = result;
}

} // namespace sim::macos::query
