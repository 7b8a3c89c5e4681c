#include "simulator/macos/CoreServices/metadata/store/listing.h"

#include <unicode/ustring.h>

#include <algorithm>

namespace sim::macos {

namespace {

bool IsHidden(const std::string &name) { return name.empty() || name.front() == '.'; }

bool IsUTF8(const std::string &name) {
    if (std::all_of(name.begin(), name.end(), [](char byte) { return byte > 0; }))
        return true;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(nullptr, 0, nullptr, name.data(), static_cast<int32_t>(name.size()), &status);
    return status != U_INVALID_CHAR_FOUND;
}

} // namespace

bool store::IsListed(const std::string &name) { return !IsHidden(name) && IsUTF8(name); }

bool store::IsUnnameable(const std::string &name) { return !IsHidden(name) && !IsUTF8(name); }

GatheringCounts &store::Counts() {
    static GatheringCounts counts;
    return counts;
}

const GatheringCounts &CountsOfGathering() { return store::Counts(); }

} // namespace sim::macos
