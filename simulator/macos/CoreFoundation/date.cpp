// Dates and the calendar. Conversions to fields work for every time: years beyond 32 bits become the last that fits.
// Conversions from fields check little: days, hours, minutes and seconds run on.
#include "simulator/macos/CoreFoundation/date.h"

#include "simulator/macos/control/faults.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <limits>

namespace sim::macos {

namespace {

using std::chrono::days;
using std::chrono::sys_days;

constexpr double kSecondsPerDay = 86400;

// The library's years have 16 bits. The calendar repeats itself after 400 years, so that one such era is enough of it:
// the one from 2001 on.
constexpr std::int64_t kDaysPerEra = 146097;
constexpr std::int64_t kYearsPerEra = 400;
constexpr sys_days kEpoch = std::chrono::year(2001) / 1 / 1;

std::int64_t FloorDivide(std::int64_t dividend, std::int64_t divisor) {
    const std::int64_t quotient = dividend / divisor;
    return dividend % divisor < 0 ? quotient - 1 : quotient;
}

// Days from 2001-01-01 to the first of a month, 1 being January.
std::int64_t DaysBefore(std::int64_t year, unsigned month) {
    const std::int64_t era = FloorDivide(year - 2001, kYearsPerEra);
    const std::chrono::year inEra(static_cast<int>(year - era * kYearsPerEra));
    return era * kDaysPerEra + (sys_days(inEra / std::chrono::month(month) / 1) - kEpoch).count();
}

// What remains above zero, as the real system computes it: for a time just below zero the modulus itself.
double Modulo(double dividend, double modulus) {
    const double rest = std::fmod(dividend, modulus);
    return rest < 0 ? rest + modulus : rest;
}

void RequireGmt(CFTimeZoneRef timeZone) {
    if (timeZone)
        Stop("calendars of time zones other than GMT are not modelled");
}

FallibleCall createDate("CFDateCreate");

} // namespace

CFHashCode Date::Hash() const { return std::hash<double>()(at_); }

CFRef<CFDateRef> MakeDate(CFAbsoluteTime at) { return CFRef<CFDateRef>::Adopt((new Date(at))->As<CFDateRef>()); }

} // namespace sim::macos

using namespace sim::macos;

CFTypeID CFDateGetTypeID() {
    static const CFTypeID type = RegisterType("CFDate");
    return type;
}

CFDateRef CFDateCreate(CFAllocatorRef, CFAbsoluteTime at) { return createDate.Fails() ? nullptr : MakeDate(at).Give(); }

CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date) { return Expect<Date>(date).At(); }

CFAbsoluteTime CFGregorianDateGetAbsoluteTime(CFGregorianDate date, CFTimeZoneRef timeZone) {
    RequireGmt(timeZone);
    // The first month of the next year follows on the twelfth. All other numbers count as January of the same year,
    // though on the real system nothing may be assumed below 0 and above 15.
    const bool isNextYear = date.month == 13;
    const int month = date.month >= 1 && date.month <= 12 ? date.month : 1;
    const std::int64_t daysBefore =
        DaysBefore(std::int64_t{date.year} + (isNextYear ? 1 : 0), static_cast<unsigned>(month));
    return static_cast<double>(daysBefore + date.day - 1) * kSecondsPerDay + 3600.0 * date.hour + 60.0 * date.minute +
           date.second;
}

CFGregorianDate CFAbsoluteTimeGetGregorianDate(CFAbsoluteTime at, CFTimeZoneRef timeZone) {
    RequireGmt(timeZone);
    constexpr double kMostDays = 1e15; // exact as a double, and far beyond the last year that fits
    const double sinceEpoch = std::isnan(at) ? 0 : std::floor(at / kSecondsPerDay);
    const auto day = static_cast<std::int64_t>(std::clamp(sinceEpoch, -kMostDays, kMostDays));
    const std::int64_t era = FloorDivide(day, kDaysPerEra);
    const std::chrono::year_month_day inEra(kEpoch + days(static_cast<int>(day - era * kDaysPerEra)));
    using Year = std::numeric_limits<SInt32>;
    const std::int64_t year = static_cast<int>(inEra.year()) + era * kYearsPerEra;
    CFGregorianDate date{};
    date.year = static_cast<SInt32>(std::clamp<std::int64_t>(year, Year::min(), Year::max()));
    date.month = static_cast<SInt8>(static_cast<unsigned>(inEra.month()));
    date.day = static_cast<SInt8>(static_cast<unsigned>(inEra.day()));
    date.hour = std::isfinite(at) ? static_cast<SInt8>(Modulo(std::floor(at / 3600), 24)) : SInt8{24};
    date.minute = std::isfinite(at) ? static_cast<SInt8>(Modulo(std::floor(at / 60), 60)) : SInt8{60};
    date.second = Modulo(at, 60);
    return date;
}
