// Which moments the $time functions stand for.
#include "simulator/macos/CoreServices/metadata/expression/time_function.h"

#include "simulator/macos/CoreServices/metadata/expression/number.h"
#include "simulator/macos/CoreServices/metadata/items/iso_date.h"

#include <chrono>
#include <cmath>
#include <limits>
#include <string>

namespace sim::macos::expression {

namespace {

using namespace std::chrono;

constexpr double kSecondsPerDay = 86400;
constexpr double kDaysPerWeek = 7;
constexpr double kMonthsPerYear = 12;
constexpr double kLastYear = 32000; // of either sign, inside what std::chrono::year holds
constexpr sys_days kEpoch = sys_days{year{2001} / January / 1};
constexpr double kInfinity = std::numeric_limits<double>::infinity();

double Infinite(double sign) { return sign < 0 ? -kInfinity : kInfinity; }

double MonthStart(double monthsSinceYearZero) {
    const double yearNumber = std::floor(monthsSinceYearZero / kMonthsPerYear);
    if (std::abs(yearNumber) > kLastYear)
        return Infinite(yearNumber);
    const double monthNumber = monthsSinceYearZero - yearNumber * kMonthsPerYear;
    const sys_days start = year{static_cast<int>(yearNumber)} / month{static_cast<unsigned>(monthNumber) + 1} / 1;
    return static_cast<double>((start - kEpoch).count()) * kSecondsPerDay;
}

double MonthsSinceYearZero(double days) {
    const year_month_day date{kEpoch + std::chrono::days{static_cast<int>(days)}};
    return static_cast<int>(date.year()) * kMonthsPerYear + static_cast<unsigned>(date.month()) - 1;
}

double DaysSinceSunday(double days) {
    const weekday today{kEpoch + std::chrono::days{static_cast<int>(days)}};
    return today.c_encoding();
}

TimeSpan Days(double first, double count) { return {first * kSecondsPerDay, (first + count) * kSecondsPerDay}; }

TimeSpan Months(double first, double count) { return {MonthStart(first), MonthStart(first + count)}; }

struct NamedBase {
    std::u16string_view name;
    TimeFunction::Base base;
    double offset;
};

constexpr NamedBase kNamedBases[] = {
    {u"now", TimeFunction::Base::kNow, 0},          {u"today", TimeFunction::Base::kDay, 0},
    {u"yesterday", TimeFunction::Base::kDay, -1},   {u"this_week", TimeFunction::Base::kWeek, 0},
    {u"this_month", TimeFunction::Base::kMonth, 0}, {u"this_year", TimeFunction::Base::kYear, 0},
};

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; }

std::u16string_view Trimmed(std::u16string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::u16string_view WithoutQuotes(std::u16string_view text) {
    const bool quoted =
        text.size() >= 2 && (text.front() == u'"' || text.front() == u'\'') && text.back() == text.front();
    return quoted ? text.substr(1, text.size() - 2) : text;
}

std::optional<TimeFunction> MakeFunction(std::u16string_view name, std::optional<std::u16string_view> argument) {
    if (name == u"iso") {
        const auto moment = argument ? ParseIsoDate(WithoutQuotes(*argument)) : std::nullopt;
        if (!moment)
            return std::nullopt;
        return TimeFunction{TimeFunction::Base::kFixed, 0, *moment};
    }
    for (const NamedBase &known : kNamedBases) {
        if (known.name != name)
            continue;
        if (!argument)
            return TimeFunction{known.base, known.offset, 0};
        const auto offset = ParseNumber(*argument);
        const bool fits = offset && (offset->isWhole || known.base == TimeFunction::Base::kNow);
        if (!fits)
            return std::nullopt;
        return TimeFunction{known.base, known.offset + offset->real, 0};
    }
    return std::nullopt;
}

} // namespace

TimeSpan Resolve(const TimeFunction &function, CFAbsoluteTime now) {
    const double today = std::floor(now / kSecondsPerDay);
    switch (function.base) {
    case TimeFunction::Base::kNow:
        return {now + function.offset, now + function.offset};
    case TimeFunction::Base::kFixed:
        return {function.fixed, function.fixed};
    case TimeFunction::Base::kDay:
        return Days(today + function.offset, 1);
    case TimeFunction::Base::kWeek:
        return Days(today - DaysSinceSunday(today) + function.offset * kDaysPerWeek, kDaysPerWeek);
    case TimeFunction::Base::kMonth:
        return Months(MonthsSinceYearZero(today) + function.offset, 1);
    case TimeFunction::Base::kYear: {
        const double thisYear = std::floor(MonthsSinceYearZero(today) / kMonthsPerYear);
        return Months((thisYear + function.offset) * kMonthsPerYear, kMonthsPerYear);
    }
    }
    return {};
}

std::optional<ParsedTime> ParseTimeFunction(std::u16string_view text) {
    constexpr std::u16string_view kPrefix = u"$time.";
    if (!text.starts_with(kPrefix))
        return std::nullopt;
    std::size_t end = kPrefix.size();
    while (end < text.size() && ((text[end] >= u'a' && text[end] <= u'z') || text[end] == u'_'))
        ++end;
    const std::u16string_view name = text.substr(kPrefix.size(), end - kPrefix.size());

    std::optional<std::u16string_view> argument;
    if (end < text.size() && text[end] == u'(') {
        const std::size_t close = text.find(u')', end);
        if (close == std::u16string_view::npos)
            return std::nullopt;
        argument = Trimmed(text.substr(end + 1, close - end - 1));
        end = close + 1;
    }
    const auto function = MakeFunction(name, argument);
    if (!function)
        return std::nullopt;
    return ParsedTime{*function, end};
}

} // namespace sim::macos::expression
