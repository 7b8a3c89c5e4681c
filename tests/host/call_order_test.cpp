// The bridge call by call: what is held while it is read, what is given up when, and what it does without memory.
#include <doctest/doctest.h>

#include "tests/host/front_doors.h"
#include "tests/support/call_log.h"
#include "tests/support/host_ages.h"
#include "tests/support/plugin_watch.h"

using namespace sim::host;
using tests::AtAges;
using tests::AtUsualAges;
using tests::CallLines;
using tests::CallLog;
using tests::FailedAllocation;
using tests::TestSession;

namespace {

HostOptions NotOfferingCFStrings(double version) {
    HostOptions options = tests::OfVersion(version);
    options.offersCFStrings = false;
    return options;
}

/// What a call of a method with one string does, when its services have been found before.
CallLines CallsOfReading(HostOptions options, const Text &text) {
    TestSession session(std::move(options));
    tests::TextInCore(session, text);
    CallLog log(session);
    tests::TextInCore(session, text);
    return log.Take();
}

const std::string kLongText(100, 'x');

} // namespace

TEST_CASE("A string that the host makes a CFString of is used and released, and nothing else is done with it") {
    CHECK(CallsOfReading(tests::OfVersion(2013.04), {"abc"}) ==
          CallLines{"REALGetStringEncoding(\"abc\")", "REALGetStringCFString(\"abc\", 0)",
                    "HISearchWindowShow(\"abc\", 0)", "CFRelease(\"abc\")"});
}

TEST_CASE("A string that is read in place is held before and given up behind the making of the CFString") {
    CHECK(CallsOfReading(NotOfferingCFStrings(2013.04), {"abc"}) ==
          CallLines{"REALGetStringEncoding(\"abc\")", "REALLockString(\"abc\")",
                    "CFStringCreateWithBytes(3, 134217984, true)", "REALUnlockString(\"abc\")",
                    "HISearchWindowShow(\"abc\", 0)", "CFRelease(\"abc\")"});
    CHECK(CallsOfReading(NotOfferingCFStrings(2011.4), {{"a\0b\0", 4}, kUTF16}) ==
          CallLines{"REALGetStringEncoding(\"ab\")", "REALLockString(\"ab\")", "CFStringCreateWithCharacters(2)",
                    "REALUnlockString(\"ab\")", "HISearchWindowShow(\"ab\", 0)", "CFRelease(\"ab\")"});
}

TEST_CASE("From 2016.0 on length and bytes are asked for before the string is held") {
    CHECK(CallsOfReading(NotOfferingCFStrings(2016.0), {"abc"}) ==
          CallLines{"REALGetStringEncoding(\"abc\")", "LenB( s as string ) as integer(\"abc\")",
                    "StringGetCString(\"abc\")", "REALLockString(\"abc\")",
                    "CFStringCreateWithBytes(3, 134217984, true)", "REALUnlockString(\"abc\")",
                    "HISearchWindowShow(\"abc\", 0)", "CFRelease(\"abc\")"});
}

TEST_CASE("Any encoding number reaches Core Foundation as it is, as external text; the unknown one as MacRoman") {
    const struct {
        uint32_t encoding;
        const char *call;
    } rows[] = {{kMacRoman, "CFStringCreateWithBytes(3, 0, true)"},
                {kUnknownEncoding, "CFStringCreateWithBytes(3, 0, true)"},
                {kISOLatin1, "CFStringCreateWithBytes(3, 513, true)"},
                {kWindowsLatin1, "CFStringCreateWithBytes(3, 1280, true)"},
                {kASCII, "CFStringCreateWithBytes(3, 1536, true)"},
                {kUTF8, "CFStringCreateWithBytes(3, 134217984, true)"}};
    AtUsualAges([&](double version) {
        for (const auto &row : rows) {
            TestSession session(NotOfferingCFStrings(version));
            CallLog log(session);
            tests::TextInCore(session, Text{"abc", row.encoding});
            CHECK(log.Take({"CFStringCreateWithBytes"}) == CallLines{row.call});
        }
    });
}

TEST_CASE("The length of a string is asked for by a function of no module") {
    TestSession session(NotOfferingCFStrings(2016.0));
    CallLog log(session);
    tests::TextInCore(session, "abc");
    CHECK(log.Take({"REALLoadGlobalMethod"}) ==
          CallLines{"REALLoadGlobalMethod(null, \"LenB( s as string ) as integer\")"});
}

TEST_CASE("A nil text reaches the system as null and no host service is called for it") {
    TestSession session;
    CallLog log(session);
    tests::TextInCore(session, nullptr);
    CHECK(log.Take() == CallLines{"HISearchWindowShow(null, 0)"});
}

TEST_CASE("Without memory a text of 100 units gives a nil host string, and one of 99 needs none") {
    TestSession session;
    const Object longQuery = tests::NewQuery(session, "a == '" + kLongText.substr(7) + "'");
    const Object shortQuery = tests::NewQuery(session, "a == '" + kLongText.substr(8) + "'");
    {
        const FailedAllocation failed(1);
        CHECK(shortQuery.GetValue("QueryString") == Value("a == '" + kLongText.substr(8) + "'"));
        CHECK(failed.Count() == 0);
        CHECK(longQuery.GetValue("QueryString").IsNil());
        CHECK(failed.Count() == 1);
    }
    CHECK(longQuery.GetValue("QueryString") == Value("a == '" + kLongText.substr(7) + "'"));
    CHECK(session.Host().Raised().empty());
}

TEST_CASE("Without memory an index outside an array raises \"Out of Bounds\", and the method goes on") {
    TestSession session;
    Host &host = session.Host();
    Object query = tests::NewQuery(session);
    const Object options = host.NewArray("string", {"a", "b", "c"});
    host.Before("REALGetStringEncoding", 1, [&] { options.Resize(0); });
    const FailedAllocation failed(1);
    query.Call<void>("SetSearchScope", Object(), options);
    CHECK(failed.Count() == 2);
    const auto raised = host.TakeRaised();
    REQUIRE(raised.size() == 2);
    CHECK(raised[0].Is("OutOfBoundsException", "Out of Bounds"));
    CHECK(raised[0].errorNumber == 0);
    CHECK(raised[1].Is("OutOfBoundsException", "Parameter index  is too big. Range is 0 to 0, but value is 2."));
}

TEST_CASE("An index is looked at before the element: outside an array nothing is read") {
    AtAges({2013.04, 2016.1}, [&](double version) {
        TestSession session(version);
        Object query = tests::NewQuery(session);
        const Object options = session.Host().NewArray("string", {"a", "b"});
        session.Host().Before("REALGetStringEncoding", 1, [&] { options.Resize(0); });
        CallLog log(session);
        query.Call<void>("SetSearchScope", Object(), options);
        const std::string read =
            version < 2016 ? "REALLockString(\"a\")" : "RuntimeDirectReadStringArray(string()[2], 0)";
        CHECK(log.Take({"RuntimeUBound", "REALLockString", "RuntimeDirectReadStringArray", "RuntimeRaiseException"}) ==
              CallLines{"RuntimeUBound(string()[2])", "RuntimeUBound(string()[2])", read, "RuntimeUBound(string()[1])",
                        "RuntimeRaiseException(OutOfBoundsException)"});
        session.Host().TakeRaised();
    });
}
