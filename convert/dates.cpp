#include "convert/dates.h"

#include <cmath>

CFDateRef RBDate2CFDate(_REALdate *date) {
    if (!date)
        return nullptr;
    constexpr const char *kFields[] = {"Year", "Month", "Day", "Hour", "Minute", "Second"};
    int32_t values[6] = {};
    for (int i = 0; i < 6; i++)
        if (!REALGetPropValueInteger(date, kFields[i], &values[i]))
            return nullptr;

    const auto [year, month, day, hour, minute, second] = values;
    const CFGregorianDate fields = {year,
                                    static_cast<SInt8>(month),
                                    static_cast<SInt8>(day),
                                    static_cast<SInt8>(hour),
                                    static_cast<SInt8>(minute),
                                    static_cast<double>(second)};
    // Deliberate: no time zone, which means GMT. The host's wall clock is not shifted.
    return CFDateCreate(kCFAllocatorDefault, CFGregorianDateGetAbsoluteTime(fields, nullptr));
}

namespace {

/// Of an infinite date, and of one that is no number, the second is no number either.
int32_t WholeSecond(const CFGregorianDate &fields) {
    return std::isfinite(fields.second) ? static_cast<int32_t>(fields.second) : 0;
}

} // namespace

OwnedObject NewHostDate(CFDateRef value) {
    using Constructor =
        void (*)(REALobjectStruct *, int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute, int32_t);
    constexpr const char *kConstructor = "Year as Integer, Month as Integer = 1, Day as Integer = 1, hour as Integer "
                                         "= 0, minute as Integer = 0, second as Integer = 0";

    // Deliberate: no time zone, which means GMT.
    const CFGregorianDate fields = CFAbsoluteTimeGetGregorianDate(CFDateGetAbsoluteTime(value), nullptr);
    auto date = AdoptHost(REALnewInstance("Date"));
    if (!date)
        return {};
    const auto construct = reinterpret_cast<Constructor>(REALLoadObjectMethod(date.Get(), kConstructor));
    if (construct) {
        construct(date.Get(), fields.year, fields.month, fields.day, fields.hour, fields.minute, WholeSecond(fields));
        return date;
    }
    REALSetPropValueInteger(date.Get(), "Year", fields.year);
    REALSetPropValueInteger(date.Get(), "Month", fields.month);
    REALSetPropValueInteger(date.Get(), "Day", fields.day);
    REALSetPropValueInteger(date.Get(), "Hour", fields.hour);
    REALSetPropValueInteger(date.Get(), "Minute", fields.minute);
    REALSetPropValueInteger(date.Get(), "Second", WholeSecond(fields));
    return date;
}
