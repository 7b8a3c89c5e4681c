// Host dates on their way to Core Foundation: which fields are read and in what order, what they are taken to mean, and
// what becomes of a date that cannot be read.
#include "tests/convert/value_session.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

#include <doctest/doctest.h>

#include <cmath>
#include <cstdlib>

using sim::host::DateFields;
using sim::host::HostOptions;
using sim::host::Object;
using tests::AtAges;
using tests::CoreValue;
using tests::Fault;
using tests::ValueSession;

namespace {

using Calls = std::vector<std::string>;

CFAbsoluteTime TimeOf(const CoreValue &value) {
    REQUIRE(value);
    REQUIRE(CFGetTypeID(value.Get()) == CFDateGetTypeID());
    return CFDateGetAbsoluteTime(static_cast<CFDateRef>(value.Get()));
}

CFAbsoluteTime TimeOf(const DateFields &fields) {
    ValueSession session;
    const CFAbsoluteTime time = TimeOf(session.FromHost(session.Host().NewDate(fields)));
    CHECK(session.TakeException() == "");
    return time;
}

/// Days since the beginning of 2001 in the Gregorian calendar, counted by another way than any code under test.
int64_t DaysTo(int32_t year, int32_t month, int32_t day) {
    int64_t days = 0;
    const auto isLeap = [](int32_t y) { return y % 4 == 0 && (y % 100 != 0 || y % 400 == 0); };
    for (int32_t y = 2001; y < year; y++)
        days += isLeap(y) ? 366 : 365;
    for (int32_t y = year; y < 2001; y++)
        days -= isLeap(y) ? 366 : 365;
    const int32_t lengths[] = {31, isLeap(year) ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (int32_t m = 1; m < month; m++)
        days += lengths[m - 1];
    return days + day - 1;
}

Calls PropertyReads(ValueSession &session) {
    Calls reads;
    for (const std::string &call : session.Host().CallNames(true))
        if (call.starts_with("REALGetPropValueInt"))
            reads.push_back(call);
    return reads;
}

} // namespace

TEST_CASE("A host date is read field by field: Year, Month, Day, Hour, Minute, Second") {
    ValueSession session;
    const Object date = session.Host().NewDate({2014, 6, 30, 23, 30, 59});
    session.Host().ClearLog();
    CHECK(session.FromHost(date));
    CHECK(PropertyReads(session) == Calls{"REALGetPropValueInteger(\"Year\")", "REALGetPropValueInteger(\"Month\")",
                                          "REALGetPropValueInteger(\"Day\")", "REALGetPropValueInteger(\"Hour\")",
                                          "REALGetPropValueInteger(\"Minute\")",
                                          "REALGetPropValueInteger(\"Second\")"});
}

TEST_CASE("The fields are taken as GMT: no zone and no offset is applied") {
    CHECK(TimeOf({2001, 1, 1, 0, 0, 0}) == 0.0);
    CHECK(TimeOf({2014, 6, 30, 23, 30, 59}) == 425863859.0);
    CHECK(TimeOf({2000, 12, 31, 23, 59, 59}) == -1.0);
}

TEST_CASE("The time zone of the machine does not matter to a host date") {
    const char *before = std::getenv("TZ");
    const std::string kept = before ? before : "";
    for (const char *zone : {"America/New_York", "Asia/Kathmandu", "UTC"}) {
        setenv("TZ", zone, 1);
        CHECK(TimeOf({2014, 7, 30, 12, 0, 0}) == 428414400.0);
    }
    before ? setenv("TZ", kept.c_str(), 1) : unsetenv("TZ");
}

TEST_CASE("A host date of 2009-02-30 12:00:00 runs on to the 2nd of March: the fields are not checked") {
    CHECK(TimeOf({2009, 2, 30, 12, 0, 0}) == 257688000.0);
    CHECK(TimeOf({2009, 3, 2, 12, 0, 0}) == 257688000.0);
    CHECK(TimeOf({2009, 13, 40, 25, 61, 61}) == 287460121.0);
}

TEST_CASE("A host date whose \"Second\" is 59 gives exactly 59.0 seconds, and no date has fractions") {
    CHECK(std::fmod(TimeOf({2014, 6, 30, 23, 30, 59}), 60.0) == 59.0);
    for (int32_t second = 0; second < 60; second += 7) {
        const CFAbsoluteTime time = TimeOf({2015, 1, 2, 3, 4, second});
        CHECK(time == std::floor(time));
        CHECK(std::fmod(time, 60.0) == second);
    }
}

TEST_CASE("Days are counted through leap years, centuries and the years before 2001") {
    for (const int32_t year : {1601, 1700, 1899, 1900, 1904, 1970, 1996, 2000, 2001, 2004, 2038, 2100, 2400, 9999})
        for (const int32_t month : {1, 2, 3, 12})
            CHECK(TimeOf({year, month, 28, 6, 0, 0}) == static_cast<double>(DaysTo(year, month, 28)) * 86400 + 21600);
}

TEST_CASE("Fields wider than their place lose their high bits, as the record prescribes") {
    CHECK(TimeOf({2009, 256 + 2, 256 + 3, 256 + 4, 256 + 5, 6}) == TimeOf({2009, 2, 3, 4, 5, 6}));
    // The seconds have a place of their own width.
    CHECK(TimeOf({2009, 2, 3, 4, 5, 256 + 6}) == TimeOf({2009, 2, 3, 4, 5, 6}) + 256);
    CHECK(TimeOf({2009, 2, 3, -1, 5, 6}) == TimeOf({2009, 2, 2, 23, 5, 6}));
    CHECK(TimeOf({2009, 2, 3, 0, -1, -1}) == TimeOf({2009, 2, 2, 23, 58, 59}));
}

TEST_CASE("The first field that cannot be read ends the conversion, and there is no date") {
    for (int32_t field = 1; field <= 6; field++) {
        CAPTURE(field);
        ValueSession session;
        const Object date = session.Host().NewDate({2014, 6, 30, 23, 30, 59});
        session.Host().ReturnNothing("REALGetPropValueInteger", field, field);
        session.Host().ClearLog();
        CHECK_FALSE(session.FromHost(date));
        CHECK(PropertyReads(session).size() == static_cast<size_t>(field));
        CHECK(session.TakeException() == "");
    }
}

TEST_CASE("A date that cannot be read is no date") {
    ValueSession session;
    const Object date = session.Host().NewDate({2014, 6, 30, 23, 30, 59});
    date.MakeDateUnreadable();
    CHECK_FALSE(session.FromHost(date));
    CHECK(session.TakeException() == "");
}

TEST_CASE("A nil date is no date") {
    ValueSession session;
    CHECK_FALSE(session.FromHost(nullptr));
}

TEST_CASE("A host without \"REALGetPropValueInteger\" has its dates read through \"REALGetPropValueInt\"") {
    ValueSession session(HostOptions{.withheld = {"REALGetPropValueInteger"}});
    CHECK(TimeOf(session.FromHost(session.Host().NewDate({2014, 6, 30, 23, 30, 59}))) == 425863859.0);
    CHECK(session.Host().CallCount("REALGetPropValueInt") == 6);
    CHECK(session.Host().RequestCount("REALGetPropValueInteger") == 1);
}

TEST_CASE("A host with neither integer getter has no dates to give") {
    ValueSession session(HostOptions{.withheld = {"REALGetPropValueInteger", "REALGetPropValueInt"}});
    const Object date = session.Host().NewDate({2014, 6, 30, 23, 30, 59});
    CHECK_FALSE(session.FromHost(date));
    CHECK(session.TakeException() == "");
    session.Host().Offer("REALGetPropValueInteger");
    CHECK(TimeOf(session.FromHost(date)) == 425863859.0);
}

TEST_CASE("Where Core Foundation makes no date, there is none") {
    ValueSession session;
    const Object date = session.Host().NewDate({2014, 6, 30, 23, 30, 59});
    const Fault fault("CFDateCreate");
    CHECK_FALSE(session.FromHost(date));
    CHECK(fault.Failed() == 1);
}

TEST_CASE("Dates are read on hosts of every age") {
    AtAges(std::initializer_list<std::optional<double>>{std::nullopt, 2011.4, 2012.5, 2016.1},
           [&](std::optional<double> age) {
               ValueSession session(HostOptions{.version = age});
               CHECK(TimeOf(session.FromHost(session.Host().NewDate({2014, 6, 30, 23, 30, 59}))) == 425863859.0);
           });
}
