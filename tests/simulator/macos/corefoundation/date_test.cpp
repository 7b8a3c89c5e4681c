#include "simulator/macos/CoreFoundation/date.h"
#include "simulator/macos/CoreFoundation/instances.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <cmath>
#include <limits>

using namespace sim::macos;
using namespace tests;

namespace {

CFAbsoluteTime At(SInt32 year, int month, int day, int hour = 0, int minute = 0, double second = 0) {
    return CFGregorianDateGetAbsoluteTime({year, static_cast<SInt8>(month), static_cast<SInt8>(day),
                                           static_cast<SInt8>(hour), static_cast<SInt8>(minute), second},
                                          nullptr);
}

CFGregorianDate FieldsOf(CFAbsoluteTime at) { return CFAbsoluteTimeGetGregorianDate(at, nullptr); }

void CheckFields(CFAbsoluteTime at, SInt32 year, int month, int day, int hour, int minute) {
    const CFGregorianDate date = FieldsOf(at);
    CAPTURE(at);
    CHECK_EQ(date.year, year);
    CHECK_EQ(int{date.month}, month);
    CHECK_EQ(int{date.day}, day);
    CHECK_EQ(int{date.hour}, hour);
    CHECK_EQ(int{date.minute}, minute);
}

} // namespace

TEST_CASE_FIXTURE(Balanced, "Days and hours at and below zero run backwards") {
    CHECK_EQ(At(2009, 3, 0), At(2009, 2, 28));
    CHECK_EQ(At(2009, 1, 1, -1), At(2008, 12, 31, 23));
}

TEST_CASE_FIXTURE(Balanced, "The calendar is Gregorian in every year, long before there was one and long after") {
    CHECK_EQ(At(2001, 1, 1), 0);
    CHECK_EQ(At(1970, 1, 1), -978307200);
    CheckFields(At(2000, 2, 29), 2000, 2, 29, 0, 0);
    CheckFields(At(1900, 2, 29), 1900, 3, 1, 0, 0);
    CheckFields(-1, 2000, 12, 31, 23, 59);
    CHECK_EQ(FieldsOf(-1).second, 59);
    CheckFields(At(1, 1, 1), 1, 1, 1, 0, 0);
    CheckFields(At(0, 2, 29), 0, 2, 29, 0, 0);
    CheckFields(At(-4713, 11, 24, 12), -4713, 11, 24, 12, 0);
    CHECK_EQ(At(-4713, 11, 24, 12), -211845067200.0);
    CheckFields(At(999999, 12, 31, 23, 59), 999999, 12, 31, 23, 59);
    for (SInt32 year = 1599; year < 2410; ++year) {
        CheckFields(At(year, 12, 31), year, 12, 31, 0, 0);
        CheckFields(At(year, 1, 1), year, 1, 1, 0, 0);
        CheckFields(At(year, 3, 1) - 1, year, 2, (year % 4 == 0 && (year % 100 != 0 || year % 400 == 0)) ? 29 : 28, 23,
                    59);
    }
}

TEST_CASE_FIXTURE(Balanced, "The last moment of a minute belongs to it") {
    const double last = std::nextafter(60.0, 0.0);
    CheckFields(last, 2001, 1, 1, 0, 0);
    CHECK_EQ(FieldsOf(last).second, last);
    CheckFields(-1e-9, 2000, 12, 31, 23, 59);
    CHECK_LT(FieldsOf(-1e-9).second, 60);
}

TEST_CASE_FIXTURE(Balanced, "Times without a calendar date give the nearest year there is") {
    CHECK_EQ(FieldsOf(std::numeric_limits<double>::infinity()).year, std::numeric_limits<SInt32>::max());
    CHECK_EQ(FieldsOf(-1e300).year, std::numeric_limits<SInt32>::min());
    CHECK_EQ(FieldsOf(std::nan("")).year, 2001);
}

TEST_CASE_FIXTURE(Balanced, "A date object keeps its time, and dates of one time are equal") {
    const auto date = CFRef<CFDateRef>::Adopt(CFDateCreate(kCFAllocatorDefault, 425863859.9));
    CHECK_EQ(CFDateGetAbsoluteTime(date.Get()), 425863859.9);
    CHECK_EQ(CFGetTypeID(date.Get()), CFDateGetTypeID());
    const auto same = MakeDate(425863859.9);
    CHECK(CFEqual(date.Get(), same.Get()));
    CHECK_EQ(CFHash(date.Get()), CFHash(same.Get()));
    CHECK_FALSE(CFEqual(date.Get(), MakeDate(0).Get()));
}

TEST_CASE_FIXTURE(Balanced, "A time zone other than none is refused") {
    const auto zone = CFRef<CFTypeRef>::Adopt(MakeInstance("CFTimeZone"));
    CHECK_EQ(RefusalOf([&] { CFAbsoluteTimeGetGregorianDate(0, static_cast<CFTimeZoneRef>(zone.Get())); }),
             "calendars of time zones other than GMT are not modelled");
}
