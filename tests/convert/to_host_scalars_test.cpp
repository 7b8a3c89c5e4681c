// Nothing, truth values, numbers, strings and dates on their way to the host.
#include "tests/convert/value_session.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>

using sim::host::HostOptions;
using sim::host::Value;
using tests::CoreDate;
using tests::CoreDouble;
using tests::CoreNumber;
using tests::CoreText;
using tests::ValueSession;

TEST_CASE("No value gives nil") {
    ValueSession session;
    CHECK(session.ToHost(nullptr).IsNil());
    CHECK(session.ItemWith(kCFNull).Call("GetAttribute", "nothing").IsNil());
}

TEST_CASE("CFNull gives nil, and no host service is asked to make anything") {
    ValueSession session(tests::WithCompanions({"CFObjectQTX"}));
    CHECK(session.ToHost(kCFNull).IsNil());
    CHECK(session.Host().CallCount("PluginNewInstance") == 0);
}

TEST_CASE("A CFBoolean becomes a boolean variant") {
    ValueSession session;
    CHECK(session.TextInHost(tests::CoreTruth(true)) == "true");
    CHECK(session.TextInHost(tests::CoreTruth(false)) == "false");
}

TEST_CASE("Integers of 8, 16 and 32 bits become 32-bit integer variants") {
    ValueSession session;
    CHECK(session.TextInHost(CoreNumber<int8_t>(kCFNumberSInt8Type, 7)) == "Integer 7");
    CHECK(session.TextInHost(CoreNumber<int8_t>(kCFNumberSInt8Type, -100)) == "Integer -100");
    CHECK(session.TextInHost(CoreNumber<int16_t>(kCFNumberSInt16Type, -300)) == "Integer -300");
    CHECK(session.TextInHost(tests::CoreInteger(INT32_MAX)) == "Integer 2147483647");
    CHECK(session.TextInHost(tests::CoreInteger(INT32_MIN)) == "Integer -2147483648");
}

TEST_CASE("Integers of 64 bits become 64-bit integer variants, however small") {
    ValueSession session;
    CHECK(session.TextInHost(CoreNumber<int64_t>(kCFNumberSInt64Type, 3'000'000'000)) == "Int64 3000000000");
    CHECK(session.TextInHost(CoreNumber<int64_t>(kCFNumberSInt64Type, 100)) == "Int64 100");
    CHECK(session.TextInHost(CoreNumber<int64_t>(kCFNumberSInt64Type, INT64_MIN)) == "Int64 -9223372036854775808");
    // The system keeps the smallest numbers in 32 bits whatever they were made as.
    CHECK(session.TextInHost(CoreNumber<int64_t>(kCFNumberSInt64Type, 5)) == "Integer 5");
}

TEST_CASE("Floats of 32 and 64 bits become double variants, whole numbers and extremes too") {
    ValueSession session;
    CHECK(session.TextInHost(CoreNumber<float>(kCFNumberFloat32Type, 1.5F)) == "Double 1.5");
    CHECK(session.TextInHost(CoreDouble(2.0)) == "Double 2");
    CHECK(session.TextInHost(CoreDouble(-1e300)) == "Double -1e+300");
    CHECK(session.TextInHost(CoreDouble(std::numeric_limits<double>::infinity())) == "Double inf");
    CHECK(std::isnan(session.ToHost(CoreDouble(std::nan(""))).As<double>()));
}

TEST_CASE("Where the host has no IntegerToVariant, Int32ToVariant makes integer variants") {
    ValueSession session(HostOptions{.withheld = {"IntegerToVariant"}});
    CHECK(session.TextInHost(tests::CoreInteger(7)) == "Integer 7");
    CHECK(session.Host().CallCount("Int32ToVariant") == 1);
}

TEST_CASE("A scalar whose variant the host cannot make gives nil") {
    ValueSession session(HostOptions{.withheld = {"BooleanToVariant", "DoubleToVariant", "IntegerToVariant",
                                                  "Int32ToVariant", "Int64ToVariant", "StringToVariant"}});
    CHECK(session.ToHost(tests::CoreTruth(true)).IsNil());
    CHECK(session.ToHost(CoreDouble(1.5)).IsNil());
    CHECK(session.ToHost(tests::CoreInteger(700)).IsNil());
    CHECK(session.ToHost(CoreNumber<int64_t>(kCFNumberSInt64Type, 700)).IsNil());
    // The text made for the variant is given up all the same.
    CHECK(session.ToHost(CoreText("text")).IsNil());
    CHECK(session.Host().CallCount("REALUnlockString") == 1);
}

TEST_CASE("A CFString becomes a string variant, and the text made on the way is unlocked") {
    ValueSession session;
    CHECK(session.TextInHost(CoreText("Größe, 大小, 🎈")) == "\"Größe, 大小, 🎈\"");
    CHECK(session.Host().CallCount("StringToVariant") == 1);
    const std::string longer(5000, 'x');
    CHECK(session.ToHost(CoreText(longer)).As<std::string>() == longer);
    CHECK(session.Host().Alive("string") == 0);
}

TEST_CASE("An empty CFString gives nil, because it has no host text") {
    ValueSession session;
    CHECK(session.ToHost(CoreText("")).IsNil());
    CHECK(session.Host().CallCount("StringToVariant") == 0);
}

namespace {

/// 2014-06-30 23:30:59.9 GMT.
constexpr CFAbsoluteTime kLateInJune = 425863859.9;

} // namespace

TEST_CASE("A CFDate becomes a host Date with the fields of GMT, without its fraction of a second") {
    ValueSession session;
    CHECK(session.TextInHost(CoreDate(kLateInJune)) == "Date 2014-06-30 23:30:59");
    CHECK(session.TextInHost(CoreDate(0)) == "Date 2001-01-01 00:00:00");
    CHECK(session.TextInHost(CoreDate(-0.5)) == "Date 2000-12-31 23:59:59");
    CHECK(session.TextInHost(CoreDate(-63113904001.0)) == "Date 0000-12-31 23:59:59");
}

TEST_CASE("A date that is infinite or no number has second 0, and its other fields as the system gives them") {
    ValueSession session;
    for (const double time : {INFINITY, -INFINITY, NAN}) {
        CAPTURE(time);
        const std::string text = session.TextInHost(CoreDate(time));
        CHECK_MESSAGE(text.ends_with(" 24:60:00"), text);
    }
}

TEST_CASE("The second of 60 that a moment just before 2001 has is passed on") {
    ValueSession session;
    CHECK(session.TextInHost(CoreDate(-1e-15)) == "Date 2000-12-31 23:59:60");
}

TEST_CASE("A date means the same in every time zone of the machine") {
    for (const char *zone : {"Pacific/Kiritimati", "America/Los_Angeles", "UTC"}) {
        CAPTURE(zone);
        setenv("TZ", zone, 1);
        tzset();
        ValueSession session;
        CHECK(session.TextInHost(CoreDate(kLateInJune)) == "Date 2014-06-30 23:30:59");
    }
    unsetenv("TZ");
    tzset();
}

TEST_CASE("A date is made by its constructor where the host lets it be loaded") {
    ValueSession session;
    session.ToHost(CoreDate(kLateInJune));
    CHECK(session.Host().CallCount("REALSetPropValueInteger") == 0);
}

TEST_CASE("Without a constructor a date's six properties are set, year to second") {
    constexpr const char *kConstructor = "Date.Year as Integer, Month as Integer = 1, Day as Integer = 1, hour as "
                                         "Integer = 0, minute as Integer = 0, second as Integer = 0";
    std::set<std::string, std::less<>> withheld;
    std::string setter = "REALSetPropValueInteger";
    SUBCASE("the constructor is not found") { withheld = {kConstructor}; }
    SUBCASE("methods cannot be loaded") { withheld = {"REALLoadObjectMethod"}; }
    SUBCASE("the setter has its older name") {
        withheld = {kConstructor, "REALSetPropValueInteger"};
        setter = "REALSetPropValueInt";
    }
    ValueSession session(HostOptions{.withheld = withheld});
    session.Host().ClearLog();
    CHECK(session.TextInHost(CoreDate(kLateInJune)) == "Date 2014-06-30 23:30:59");
    std::vector<std::string> set;
    for (const std::string &call : session.Host().CallNames(true))
        if (call.starts_with("REALSetPropValue"))
            set.push_back(call);
    CHECK(set == std::vector<std::string>{setter + "(\"Year\", 2014)", setter + "(\"Month\", 6)",
                                          setter + "(\"Day\", 30)", setter + "(\"Hour\", 23)",
                                          setter + "(\"Minute\", 30)", setter + "(\"Second\", 59)"});
}

TEST_CASE("Each date has its own six fields, constructed or set") {
    const std::set<std::string, std::less<>> ways[] = {{}, {"REALLoadObjectMethod"}};
    for (const auto &withheld : ways) {
        ValueSession session(HostOptions{.withheld = withheld});
        CHECK(session.TextInHost(CoreDate(kLateInJune)) == "Date 2014-06-30 23:30:59");
        CHECK(session.TextInHost(CoreDate(0)) == "Date 2001-01-01 00:00:00");
        CHECK(session.TextInHost(CoreDate(INFINITY)).ends_with(":00"));
        CHECK(session.TextInHost(CoreDate(kLateInJune)) == "Date 2014-06-30 23:30:59");
    }
}

TEST_CASE("A date that can be neither constructed nor set is a new date as the host makes it") {
    ValueSession session(
        HostOptions{.withheld = {"REALLoadObjectMethod", "REALSetPropValueInteger", "REALSetPropValueInt"}});
    CHECK(session.TextInHost(CoreDate(kLateInJune)) == "Date 0000-01-01 00:00:00");
}

TEST_CASE("In an application without the class Date a date gives nil") {
    ValueSession session(HostOptions{.missingClasses = {"Date"}});
    CHECK(session.ToHost(CoreDate(0)).IsNil());
}
