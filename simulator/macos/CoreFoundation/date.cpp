// Dates and the calendar. Conversions to fields work for every time: years beyond 32 bits become the last that fits,
// and what is no number is taken as the epoch. Conversions from fields check nothing: a month outside 1 to 12 counts on
// from its year, days, hours, minutes and seconds run on.
#include "simulator/macos/CoreFoundation/date.h"

#include "simulator/macos/control/faults.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace sim::macos {

namespace {

constexpr double kSecondsPerDay = 86400;
constexpr std::int64_t kDaysPerEra = 146097; // 400 years
constexpr std::int64_t kYearsPerEra = 400;
constexpr std::int64_t kDaysPerYear = 365;
constexpr std::int64_t kMonthsPerYear = 12;

std::int64_t FloorDivide(std::int64_t dividend, std::int64_t divisor) {
    const std::int64_t quotient = dividend / divisor;
    return dividend % divisor < 0 ? quotient - 1 : quotient;
}

bool IsLeap(std::int64_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

// Days from the first of January to the first of a month, 0 being January.
std::int64_t DaysBeforeMonth(std::int64_t month, bool leap) {
    constexpr std::int64_t kDays[kMonthsPerYear] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    return kDays[month] + (leap && month > 1 ? 1 : 0);
}

// Days from 2001-01-01 to the first of January of a year. Eras of 400 years begin with 2001, 2401 and so on.
std::int64_t DaysBeforeYear(std::int64_t year) {
    const std::int64_t sinceEpoch = year - 2001;
    const std::int64_t era = FloorDivide(sinceEpoch, kYearsPerEra);
    const std::int64_t inEra = sinceEpoch - era * kYearsPerEra;
    return era * kDaysPerEra + inEra * kDaysPerYear + inEra / 4 - inEra / 100;
}

struct Day {
    std::int64_t year;
    std::int64_t month; // 0 is January
    std::int64_t day;   // 0 is the first
};

Day DayFrom(std::int64_t days) {
    const std::int64_t era = FloorDivide(days, kDaysPerEra);
    const std::int64_t dayOfEra = days - era * kDaysPerEra;
    std::int64_t year = era * kYearsPerEra + 2001 + std::min(dayOfEra / kDaysPerYear, kYearsPerEra - 1);
    if (DaysBeforeYear(year) > days)
        --year;
    const std::int64_t dayOfYear = days - DaysBeforeYear(year);
    const bool leap = IsLeap(year);
    std::int64_t month = kMonthsPerYear - 1;
    while (DaysBeforeMonth(month, leap) > dayOfYear)
        --month;
    return {year, month, dayOfYear - DaysBeforeMonth(month, leap)};
}

void RequireGmt(CFTimeZoneRef timeZone) {
    if (timeZone)
        Stop("calendars of time zones other than GMT are not modelled");
}

FallibleCall create("CFDateCreate");

} // namespace

CFHashCode Date::Hash() const { return std::hash<double>()(at_); }

CFRef<CFDateRef> MakeDate(CFAbsoluteTime at) { return CFRef<CFDateRef>::Adopt((new Date(at))->As<CFDateRef>()); }

} // namespace sim::macos

using namespace sim::macos;

CFTypeID CFDateGetTypeID() {
    static const CFTypeID type = RegisterType("CFDate");
    return type;
}

CFDateRef CFDateCreate(CFAllocatorRef, CFAbsoluteTime at) { return create.Fails() ? nullptr : MakeDate(at).Give(); }

CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date) { return Expect<Date>(date).At(); }

CFAbsoluteTime CFGregorianDateGetAbsoluteTime(CFGregorianDate date, CFTimeZoneRef timeZone) {
    RequireGmt(timeZone);
    const std::int64_t monthsOn = std::int64_t{date.month} - 1;
    const std::int64_t year = std::int64_t{date.year} + FloorDivide(monthsOn, kMonthsPerYear);
    const std::int64_t month = monthsOn - FloorDivide(monthsOn, kMonthsPerYear) * kMonthsPerYear;
    const std::int64_t days = DaysBeforeYear(year) + DaysBeforeMonth(month, IsLeap(year)) + date.day - 1;
    return static_cast<double>(days) * kSecondsPerDay + 3600.0 * date.hour + 60.0 * date.minute + date.second;
}

CFGregorianDate CFAbsoluteTimeGetGregorianDate(CFAbsoluteTime at, CFTimeZoneRef timeZone) {
    RequireGmt(timeZone);
    constexpr double kMostDays = 1e15; // exact as a double, and far beyond the last year that fits
    if (std::isnan(at))
        at = 0;
    const double days = std::clamp(std::floor(at / kSecondsPerDay), -kMostDays, kMostDays);
    const Day day = DayFrom(static_cast<std::int64_t>(days));
    const double inDay = std::clamp(at - days * kSecondsPerDay, 0.0, std::nextafter(kSecondsPerDay, 0.0));
    const double second = std::fmod(inDay, 60);
    const auto minutes = static_cast<int>(std::lround((inDay - second) / 60));
    using Year = std::numeric_limits<std::int32_t>;
    return {static_cast<SInt32>(std::clamp<std::int64_t>(day.year, Year::min(), Year::max())),
            static_cast<SInt8>(day.month + 1),
            static_cast<SInt8>(day.day + 1),
            static_cast<SInt8>(minutes / 60),
            static_cast<SInt8>(minutes % 60),
            second};
}
