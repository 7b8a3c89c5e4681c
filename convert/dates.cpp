#include "convert/dates.h"

#include "host/services.h"

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
