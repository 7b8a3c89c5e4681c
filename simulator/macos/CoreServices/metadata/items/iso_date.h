// Dates as people write them into attributes and query expressions.
#pragma once

#include <CoreFoundation/CFDate.h>

#include <optional>
#include <string_view>

namespace sim::macos {

/// Reads an ISO 8601 date, or date and time: 2014-06-30, 2014-06-30T23:30:59.5+02:00, 20140630T233059Z. Without a zone
/// it is GMT.
std::optional<CFAbsoluteTime> ParseIsoDate(std::u16string_view text);

} // namespace sim::macos
