#include "simulator/language/dates.h"

#include "simulator/macos/control/clock.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace sim::language {

namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr int64_t kSecondsADay = 86400;
constexpr sys_days kFirstDay = std::chrono::year(1904) / 1 / 1;
/// Nearly 30000 years: farther, the calendar's own numbers end.
constexpr int64_t kFarthestYear = 30000;
constexpr int64_t kFarthest = 900000000000;
/// From 1904-01-01 to 2001-01-01.
constexpr int64_t kSystemEpoch = 3061152000;

int64_t FloorOf(int64_t number, int64_t divisor) { return number / divisor - (number % divisor < 0 ? 1 : 0); }

sys_days FirstOfMonth(int32_t year, int32_t month) {
    const int64_t months = int64_t{year} * 12 + month - 1;
    const int64_t wholeYears = std::clamp<int64_t>(FloorOf(months, 12), -kFarthestYear, kFarthestYear);
    return std::chrono::year(static_cast<int>(wholeYears)) / static_cast<int>(months - FloorOf(months, 12) * 12 + 1) /
           1;
}

sys_days DayOf(int64_t totalSeconds) {
    return kFirstDay + std::chrono::days(static_cast<int32_t>(FloorOf(totalSeconds, kSecondsADay)));
}

} // namespace

int64_t TotalSeconds(const host::DateFields &fields) {
    const int64_t days = (FirstOfMonth(fields.year, fields.month) - kFirstDay).count() + int64_t{fields.day} - 1;
    return days * kSecondsADay + int64_t{fields.hour} * 3600 + int64_t{fields.minute} * 60 + fields.second;
}

host::DateFields FieldsAt(int64_t wanted) {
    const int64_t totalSeconds = std::clamp(wanted, -kFarthest, kFarthest);
    const year_month_day day(DayOf(totalSeconds));
    const auto rest = static_cast<int32_t>(totalSeconds - FloorOf(totalSeconds, kSecondsADay) * kSecondsADay);
    return {static_cast<int>(day.year()),
            static_cast<int32_t>(static_cast<unsigned>(day.month())),
            static_cast<int32_t>(static_cast<unsigned>(day.day())),
            rest / 3600,
            rest / 60 % 60,
            rest % 60};
}

host::DateFields Normalised(const host::DateFields &fields) { return FieldsAt(TotalSeconds(fields)); }

host::DateFields Now() {
    return FieldsAt(static_cast<int64_t>(std::floor(macos::CurrentClock().Now())) + kSystemEpoch);
}

int32_t DayOfWeek(const host::DateFields &fields) {
    return static_cast<int32_t>(std::chrono::weekday(DayOf(TotalSeconds(Normalised(fields)))).c_encoding()) + 1;
}

} // namespace sim::language
