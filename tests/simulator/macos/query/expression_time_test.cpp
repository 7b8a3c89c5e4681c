// Dates in queries. It is Monday, 30 June 2014, 15:04:05 GMT.
#include "simulator/macos/CoreServices/metadata/expression/expression.h"
#include "simulator/macos/CoreServices/metadata/expression/time_function.h"
#include "simulator/macos/CoreServices/metadata/items/iso_date.h"
#include "tests/simulator/macos/query/support/attributes.h"

#include <doctest/doctest.h>

#include <cmath>
#include <string>

namespace sim::macos {

namespace {

using expression::ParseTimeFunction;
using expression::Resolve;
using expression::TimeSpan;

const CFAbsoluteTime kNow = Date(2014, 6, 30, 15, 4, 5);

TimeSpan Span(std::string_view function) {
    const auto parsed = ParseTimeFunction(Utf16(function));
    REQUIRE_MESSAGE(parsed.has_value(), function);
    REQUIRE(parsed->length == function.size());
    return Resolve(parsed->function, kNow);
}

bool Fits(CFAbsoluteTime moment, std::string_view query) {
    const auto expression = expression::Expression::Parse(Utf16(query));
    REQUIRE_MESSAGE(expression != nullptr, query);
    return expression->Matches(Attributes().With("a", Moment(moment)), kNow);
}

} // namespace

TEST_CASE("time functions stand for moments and periods of the calendar in GMT") {
    struct Row {
        const char *function;
        CFAbsoluteTime start;
        CFAbsoluteTime end;
    };
    const Row kRows[] = {
        {"$time.now", kNow, kNow},
        {"$time.now(-90)", kNow - 90, kNow - 90},
        {"$time.now(0.5)", kNow + 0.5, kNow + 0.5},
        {"$time.today", Date(2014, 6, 30), Date(2014, 7, 1)},
        {"$time.today(1)", Date(2014, 7, 1), Date(2014, 7, 2)},
        {"$time.today(-30)", Date(2014, 5, 31), Date(2014, 6, 1)},
        {"$time.yesterday", Date(2014, 6, 29), Date(2014, 6, 30)},
        {"$time.yesterday(-1)", Date(2014, 6, 28), Date(2014, 6, 29)},
        {"$time.this_week", Date(2014, 6, 29), Date(2014, 7, 6)},
        {"$time.this_week(-1)", Date(2014, 6, 22), Date(2014, 6, 29)},
        {"$time.this_month", Date(2014, 6, 1), Date(2014, 7, 1)},
        {"$time.this_month(-6)", Date(2013, 12, 1), Date(2014, 1, 1)},
        {"$time.this_month(+8)", Date(2015, 2, 1), Date(2015, 3, 1)},
        {"$time.this_year", Date(2014, 1, 1), Date(2015, 1, 1)},
        {"$time.this_year(-14)", Date(2000, 1, 1), Date(2001, 1, 1)},
        {"$time.iso(2014-06-30)", Date(2014, 6, 30), Date(2014, 6, 30)},
    };
    for (const Row &row : kRows) {
        CAPTURE(row.function);
        CHECK(Span(row.function).start == row.start);
        CHECK(Span(row.function).end == row.end);
    }
}

TEST_CASE("before 2001 days and weeks still run forward") {
    const auto parsed = ParseTimeFunction(u"$time.this_week");
    const CFAbsoluteTime before = Date(1999, 12, 31, 23, 59, 59); // a Friday
    CHECK(Resolve(parsed->function, before).start == Date(1999, 12, 26));
    CHECK(Resolve(parsed->function, before).end == Date(2000, 1, 2));
}

TEST_CASE("a shift beyond the calendar is later, or earlier, than everything") {
    CHECK(std::isinf(Span("$time.this_year(99999999)").start));
    CHECK(Span("$time.this_year(-99999999)").start < 0);
    CHECK(std::isinf(Span("$time.this_month(9000000000000000000)").start));
    CHECK(Fits(kNow, "a < $time.this_year(99999999)"));
    CHECK_FALSE(Fits(kNow, "a == $time.this_year(99999999)"));
}

TEST_CASE("equality asks for all of a period, order for its start") {
    CHECK(Fits(Date(2014, 6, 30), "a == $time.today"));
    CHECK(Fits(Date(2014, 6, 30, 23, 59, 59.9), "a == $time.today"));
    CHECK_FALSE(Fits(Date(2014, 7, 1), "a == $time.today"));
    CHECK(Fits(Date(2014, 7, 1), "a != $time.today"));
    CHECK(Fits(Date(2014, 6, 30), "a >= $time.today"));
    CHECK(Fits(Date(2014, 7, 15), "a >= $time.today"));
    CHECK_FALSE(Fits(Date(2014, 6, 29, 23, 59, 59), "a >= $time.today"));
    CHECK(Fits(Date(2014, 6, 30, 12), "a > $time.today"));
    CHECK_FALSE(Fits(Date(2014, 6, 30), "a > $time.today"));
    CHECK_FALSE(Fits(Date(2014, 6, 30), "a < $time.today"));
    CHECK(Fits(Date(2014, 6, 30), "a <= $time.today"));
    CHECK_FALSE(Fits(Date(2014, 6, 30, 12), "a <= $time.today"));
    CHECK(Fits(Date(2014, 6, 25), "a >= $time.today(-7)"));
    CHECK_FALSE(Fits(Date(2014, 6, 22), "a >= $time.today(-7)"));
    CHECK(Fits(Date(2014, 6, 29, 12), "InRange(a,$time.yesterday,$time.today)"));
    CHECK_FALSE(Fits(Date(2014, 6, 30, 12), "InRange(a,$time.yesterday,$time.today)"));
    CHECK(Fits(kNow, "a == $time.now"));
    CHECK_FALSE(Fits(kNow + 0.001, "a == $time.now"));
}

TEST_CASE("a date compares with a number of seconds since 2001") {
    CHECK(Fits(Date(2001, 1, 1, 0, 1), "a == 60"));
    CHECK(Fits(Date(2001, 1, 1, 0, 1), "a < '61'"));
    CHECK(Fits(Date(2000, 12, 31), "a < 0"));
    CHECK(Fits(Date(2001, 1, 1), "InRange(a,-0.5,0.5)"));
}

TEST_CASE("dates in ISO 8601 are read in their common forms") {
    struct Row {
        const char *text;
        CFAbsoluteTime moment;
    };
    const Row kRows[] = {
        {"2014-06-30", Date(2014, 6, 30)},
        {"20140630", Date(2014, 6, 30)},
        {"2012-02-29", Date(2012, 2, 29)},
        {"2014-06-30T23:30", Date(2014, 6, 30, 23, 30)},
        {"2014-06-30T23:30:59", Date(2014, 6, 30, 23, 30, 59)},
        {"2014-06-30T23:30:59.25", Date(2014, 6, 30, 23, 30, 59.25)},
        {"2014-06-30T23:30:59,5Z", Date(2014, 6, 30, 23, 30, 59.5)},
        {"2014-06-30 23:30:59 +0000", Date(2014, 6, 30, 23, 30, 59)},
        {"20140630T233059Z", Date(2014, 6, 30, 23, 30, 59)},
        {"2014-06-30T23:30:59+02:00", Date(2014, 6, 30, 21, 30, 59)},
        {"2014-06-30T23:30:59-0130", Date(2014, 7, 1, 1, 0, 59)},
        {"2014-06-30T23:30+05", Date(2014, 6, 30, 18, 30)},
        {"2014-06-30T24:00", Date(2014, 7, 1)},
    };
    for (const Row &row : kRows) {
        CAPTURE(row.text);
        const auto moment = ParseIsoDate(Utf16(row.text));
        REQUIRE(moment.has_value());
        CHECK(*moment == doctest::Approx(row.moment).epsilon(1e-15));
    }
}

TEST_CASE("what is no date in ISO 8601 is refused") {
    constexpr const char *kTexts[] = {
        "",
        "2014",
        "2014-06",
        "2014-6-30",
        "2014-0630",
        "201406-30",
        "2014-00-10",
        "2014-13-10",
        "2014-02-30",
        "2013-02-29",
        "2014-06-31",
        "14-06-30",
        "2014-06-30T",
        "2014-06-30T25:00",
        "2014-06-30T24:01",
        "2014-06-30T23:60",
        "2014-06-30T23:30:61",
        "2014-06-30T23:30:59.",
        "2014-06-30T23:30x",
        "2014-06-30T23:30+24:00",
        "2014-06-30T23:30+1",
        "2014-06-30Z",
        " 2014-06-30",
        "2014-06-30 ",
        "yesterday",
    };
    for (const char *text : kTexts) {
        CAPTURE(text);
        CHECK_FALSE(ParseIsoDate(Utf16(text)).has_value());
    }
}

} // namespace sim::macos
