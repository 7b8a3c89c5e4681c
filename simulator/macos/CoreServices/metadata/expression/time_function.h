// $time: moments and periods of a query, most of them relative to the moment at which it is asked. The calendar is the
// Gregorian one in GMT and a week begins on Sunday, so a query means the same on every machine.
#pragma once

#include <CoreFoundation/CFDate.h>

#include <cstddef>
#include <optional>
#include <string_view>

namespace sim::macos::expression {

struct TimeFunction {
    enum class Base { kNow, kDay, kWeek, kMonth, kYear, kFixed };
    Base base = Base::kNow;
    /// How far the base is shifted, in its own unit; seconds for now.
    double offset = 0;
    /// Of a fixed moment: seconds since 2001-01-01 GMT.
    CFAbsoluteTime fixed = 0;
};

/// From start up to, not including, end; a single moment when the two are the same.
struct TimeSpan {
    CFAbsoluteTime start = 0;
    CFAbsoluteTime end = 0;

    bool Contains(CFAbsoluteTime moment) const {
        return start == end ? moment == start : moment >= start && moment < end;
    }
};

/// What the function stands for at the given moment. A shift beyond the calendar gives an infinite moment.
TimeSpan Resolve(const TimeFunction &function, CFAbsoluteTime now);

struct ParsedTime {
    TimeFunction function;
    std::size_t length = 0; // of the text that was read
};

/// Reads a function from the start of the text, from its dollar sign to its closing parenthesis if it has one. Nothing
/// when it is malformed.
std::optional<ParsedTime> ParseTimeFunction(std::u16string_view text);

} // namespace sim::macos::expression
