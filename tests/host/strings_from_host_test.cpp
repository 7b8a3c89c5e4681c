// Host strings on their way to the system: which of the host's services is asked on which host, how bytes of each
// encoding are read, and what bad bytes come to.
#include <doctest/doctest.h>

#include "tests/host/front_doors.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

#include <cstring>

using namespace sim::host;
using namespace tests;
using namespace std::string_literals;

namespace {

using Calls = std::vector<std::string>;
using Read = std::optional<std::u16string>;

constexpr const char *kAskCFString = "REALGetStringCFString";

bool HidesLayouts(const std::optional<double> &age) { return age.value_or(0) >= 2016.0; }

/// A host whose strings are read byte by byte.
HostOptions WithoutCFStrings(std::optional<double> age) { return Without({kAskCFString}, age); }

/// What the plugin reads of a text on a host that makes no CFStrings, the same on every age.
Read ReadAs(const std::string &bytes, uint32_t encoding) {
    std::optional<Read> first;
    AtEveryAge([&](std::optional<double> age) {
        TestSession session(WithoutCFStrings(age));
        const Read read = TextInCore(session, Text{bytes, encoding});
        if (!first)
            first = read;
        CHECK(read == *first);
        CHECK(session.TakeException() == "");
    });
    return *first;
}

template <class Unit> std::string BytesOf(std::basic_string_view<Unit> units) {
    std::string bytes(units.size() * sizeof(Unit), '\0');
    std::memcpy(bytes.data(), units.data(), bytes.size());
    return bytes;
}

std::string UTF16Bytes(std::u16string_view text) { return BytesOf(text); }
std::string UTF32Bytes(std::u32string_view text) { return BytesOf(text); }

std::string BigEndianUTF32(std::u32string_view text) {
    std::string bytes;
    for (const char32_t point : text)
        for (const int shift : {24, 16, 8, 0})
            bytes += static_cast<char>(point >> shift & 0xFF);
    return bytes;
}

} // namespace

TEST_CASE("A nil string gives no CFString, and the host is not asked about it") {
    AtEveryAge([&](std::optional<double> age) {
        TestSession session(HostOptions{.version = age});
        session.Host().ClearLog();
        CHECK(TextInCore(session, nullptr) == std::nullopt);
        CHECK(session.Host().CallNames().empty());
    });
}

TEST_CASE("A host string with the unknown encoding 0xFFFF is read as MacRoman bytes") {
    AtEveryAge([&](std::optional<double> age) {
        TestSession session(HostOptions{.version = age});
        CHECK(TextInCore(session, Text{"caf\x8E \xDB\xF0", kUnknownEncoding}) == u"caf\u00E9 \u20AC\uF8FF");
        CHECK(session.Host().CallCount(kAskCFString) == 0);
        CHECK(session.Host().RequestCount(kAskCFString) == 0);
    });
}

TEST_CASE("Below 2016.0 a string is held while its bytes are read in place") {
    AtEveryAge([&](std::optional<double> age) {
        if (HidesLayouts(age))
            return;
        for (const uint32_t encoding : {uint32_t{kUnknownEncoding}, uint32_t{kUTF8}}) {
            TestSession session(WithoutCFStrings(age));
            session.Host().ClearLog();
            CHECK(TextInCore(session, Text{"abc", encoding}) == u"abc");
            CHECK(session.Host().CallNames() == Calls{"REALGetStringEncoding", "REALLockString", "REALUnlockString"});
        }
    });
}

TEST_CASE("From 2016.0 on the bytes come from \"LenB\" and \"StringGetCString\", and the string is held afterwards") {
    AtAges({2016.0, 3000.0}, [&](double age) {
        for (const uint32_t encoding : {uint32_t{kUnknownEncoding}, uint32_t{kUTF8}}) {
            TestSession session(WithoutCFStrings(age));
            CHECK(TextInCore(session, Text{"abc", encoding}) == u"abc");
            session.Host().ClearLog();
            CHECK(TextInCore(session, Text{"abc", encoding}) == u"abc");
            CHECK(session.Host().CallNames() == Calls{"REALGetStringEncoding", "LenB( s as string ) as integer",
                                                      "StringGetCString", "REALLockString", "REALUnlockString"});
        }
    });
}

TEST_CASE("From 2012.0 on the host's own CFString is taken at the first question") {
    AtAges({2012.0, 2012.5, 2013.04, 2015.99, 2016.0, 3000.0}, [&](double age) {
        TestSession session(age);
        session.Host().ClearLog();
        CHECK(TextInCore(session, Text{"caf\xC3\xA9", kUTF8}) == u"caf\u00E9");
        CHECK(session.Host().CallNames(true) == Calls{"REALGetStringEncoding()", "REALGetStringCFString(0)"});
    });
}

TEST_CASE("From 2012.0 on a host that gives no CFString is asked a second time, through a cell of its own") {
    AtAges({2012.0, 2013.04, 2016.0}, [&](double age) {
        TestSession session(age);
        session.Host().ReturnNothing(kAskCFString, 1, 1);
        session.Host().ClearLog();
        CHECK(TextInCore(session, Text{"abc", kUTF8}) == u"abc");
        CHECK(session.Host().CallNames(true) ==
              Calls{"REALGetStringEncoding()", "REALGetStringCFString(0)", "REALGetStringCFString(0)"});
        CHECK(session.Host().RequestCount(kAskCFString) == 2);
    });
}

TEST_CASE("From 2012.0 on a host that gives no CFString twice has its string read") {
    AtAges({2012.0, 2013.04, 2016.0}, [&](double age) {
        TestSession session(age);
        session.Host().ReturnNothing(kAskCFString);
        CHECK(TextInCore(session, Text{"abc", kUTF8}) == u"abc");
        CHECK(session.Host().CallCount(kAskCFString) == 2);
        CHECK(session.Host().CallCount("REALLockString") == 1);
    });
}

TEST_CASE("Below 2012.0 a host that makes CFStrings is asked once") {
    AtAges(std::initializer_list<std::optional<double>>{std::nullopt, 2011.4, 2011.99}, [&](std::optional<double> age) {
        HostOptions options = OfVersion(age);
        options.offersCFStrings = true;
        TestSession session(options);
        session.Host().ClearLog();
        CHECK(TextInCore(session, Text{"abc", kUTF8}) == u"abc");
        CHECK(session.Host().CallNames(true) == Calls{"REALGetStringEncoding()", "REALGetStringCFString(0)"});
        CHECK(session.Host().RequestCount(kAskCFString) == 1);

        session.Host().ReturnNothing(kAskCFString);
        session.Host().ClearLog();
        CHECK(TextInCore(session, Text{"abc", kUTF8}) == u"abc");
        CHECK(session.Host().CallCount(kAskCFString) == 1);
        CHECK(session.Host().CallCount("REALLockString") == 1);
    });
}

TEST_CASE("A host that lacks \"REALGetStringCFString\" is asked for it again with the next string") {
    TestSession session(WithoutCFStrings(2013.04));
    CHECK(TextInCore(session, "abc") == u"abc");
    CHECK(session.Host().RequestCount(kAskCFString) == 2);
    session.Host().Offer(kAskCFString);
    CHECK(TextInCore(session, "abc") == u"abc");
    CHECK(session.Host().CallCount(kAskCFString) == 1);
    CHECK(session.Host().RequestCount(kAskCFString) == 3);
}

TEST_CASE("A missing \"REALGetStringEncoding\" counts as encoding 0, MacRoman") {
    AtEveryAge([&](std::optional<double> age) {
        TestSession session(Without({"REALGetStringEncoding", kAskCFString}, age));
        CHECK(TextInCore(session, Text{"caf\x8E", kUTF8}) == u"caf\u00E9");
        CHECK(TextInCore(session, Text{"caf\x8E", kUnknownEncoding}) == u"caf\u00E9");
    });
}

TEST_CASE("A missing \"LenB\" counts as length 0") {
    for (const uint32_t encoding : {uint32_t{kUTF8}, uint32_t{kUTF16}, uint32_t{kUnknownEncoding}}) {
        TestSession session(Without({"LenB( s as string ) as integer", kAskCFString}, 2016.1));
        CHECK(TextInCore(session, Text{"abcd", encoding}) == u"");
        CHECK(session.Host().CallCount("StringGetCString") == 1);
    }
}

TEST_CASE("A missing \"REALLoadGlobalMethod\" leaves \"LenB\" missing") {
    TestSession session(Without({"REALLoadGlobalMethod", kAskCFString}, 2016.1));
    CHECK(TextInCore(session, "abcd") == u"");
}

TEST_CASE("A missing \"StringGetCString\" leaves nothing to read") {
    for (const uint32_t encoding : {uint32_t{kUTF8}, uint32_t{kUTF16}, uint32_t{kUnknownEncoding}}) {
        TestSession session(Without({"StringGetCString", kAskCFString}, 2016.1));
        CHECK(TextInCore(session, Text{"abcd", encoding}) == std::nullopt);
        CHECK(TextInCore(session, Text{"", encoding}) == u"");
    }
}

TEST_CASE("A host without \"REALLockString\" has its strings read, and nothing that was not added is released") {
    AtEveryAge([&](std::optional<double> age) {
        TestSession session(Without({"REALLockString", kAskCFString}, age));
        CHECK(TextInCore(session, "abc") == u"abc");
        CHECK(session.Host().CallCount("REALUnlockString") == 0);
    });
}

TEST_CASE("A host without \"REALUnlockString\" has its strings read all the same") {
    AtEveryAge([&](std::optional<double> age) {
        TestSession session(Without({"REALUnlockString", kAskCFString}, age));
        CHECK(TextInCore(session, "abc") == u"abc");
        session.Host().ExpectLeft("string", 1);
    });
}

TEST_CASE("Encoding 0 is read as MacRoman") {
    CHECK(ReadAs("\x8E\xA9\xDB\xF0 x", kMacRoman) == u"\u00E9\u00A9\u20AC\uF8FF x");
    std::string all;
    for (int byte = 0; byte < 256; byte++)
        all += static_cast<char>(byte);
    const Read read = ReadAs(all, kMacRoman);
    REQUIRE(read);
    CHECK(read->size() == 256);
    CHECK(read == ReadAs(all, kUnknownEncoding));
}

TEST_CASE("Encoding 0x0100 is read as UTF-16 units in the order of the machine") {
    CHECK(ReadAs(UTF16Bytes(u"a\u00E9\U0001F600"), kUTF16) == u"a\u00E9\U0001F600");
    // A mark is a character like any other.
    CHECK(ReadAs(UTF16Bytes(u"\uFEFFa"), kUTF16) == u"\uFEFFa");
    CHECK(ReadAs(UTF16Bytes(u"\uFFFEa"), kUTF16) == u"\uFFFEa");
    CHECK(ReadAs(UTF16Bytes(std::u16string_view(u"a\0b", 3)), kUTF16) == std::u16string_view(u"a\0b", 3));
}

TEST_CASE("UTF-16 of an odd number of bytes loses the last one") {
    CHECK(ReadAs(UTF16Bytes(u"ab") + "c", kUTF16) == u"ab");
    CHECK(ReadAs("x", kUTF16) == u"");
}

TEST_CASE("UTF-16 with lone surrogates passes as it is") {
    const std::u16string lone = {u'a', 0xD800, u'b', 0xDC00};
    CHECK(ReadAs(UTF16Bytes(lone), kUTF16) == lone);
}

TEST_CASE("Encoding 0x0201 is read as ISO Latin-1") { CHECK(ReadAs("\xE9\x80", kISOLatin1) == u"\u00E9\u0080"); }

TEST_CASE("Encoding 0x0500 is read as Windows Latin-1") {
    CHECK(ReadAs("\xE9\x80\x99", kWindowsLatin1) == u"\u00E9\u20AC\u2122");
}

TEST_CASE("Encoding 0x08000100 is read as UTF-8") {
    CHECK(ReadAs("a\u00E9\u20AC\U0001F600", kUTF8) == u"a\u00E9\u20AC\U0001F600");
    CHECK(ReadAs("\U0010FFFF\u0000"s, kUTF8) == u"\U0010FFFF\0"s);
    // In the external representation a mark at the beginning is no text.
    CHECK(ReadAs("\xEF\xBB\xBF"
                 "a",
                 kUTF8) == u"a");
}

TEST_CASE("Encoding 0x0C000100 is read as UTF-32 in its external representation") {
    CHECK(ReadAs(UTF32Bytes(U"\uFEFFa\U0001F600"), kUTF32) == u"a\U0001F600");
    CHECK(ReadAs(BigEndianUTF32(U"\uFEFFa\U0001F600"), kUTF32) == u"a\U0001F600");
    CHECK(ReadAs(BigEndianUTF32(U"a\U0001F600"), kUTF32) == u"a\U0001F600");
    // Without a mark the external form is big-endian.
    CHECK(ReadAs(UTF32Bytes(U"\U0001F600"), kUTF32) == std::nullopt);
}

TEST_CASE("Any other encoding number is passed on to Core Foundation") {
    CHECK(ReadAs("abc", kASCII) == u"abc");
    CHECK(ReadAs("a\xE9", kASCII) == u"a\u00E9");
    CHECK(ReadAs(UTF16Bytes(u"a\u00E9"), 0x14000100) == u"a\u00E9"); // UTF-16, little-endian
    CHECK(ReadAs("abc", 0x12345) == std::nullopt);
    CHECK(ReadAs("abc", 0xFFFFFFFF) == std::nullopt);
}

TEST_CASE("Bytes that are no text in their encoding give no CFString") {
    for (const char *malformed : {"\xFF", "a\xC3", "\xC3(", "\xE2\x82", "\xED\xA0\x80", "\xC0\xAF", "\xF4\x90\x80\x80",
                                  "\xF5\x80\x80\x80", "\x80", "\xF0\x82\x82\xAC"}) {
        CAPTURE(malformed);
        CHECK(ReadAs(malformed, kUTF8) == std::nullopt);
    }
    CHECK(ReadAs("\x81", kWindowsLatin1) == std::nullopt);
    for (const char32_t point : {0xD800U, 0xDFFFU, 0x110000U, 0xFFFFFFFFU})
        CHECK(ReadAs(BigEndianUTF32(std::u32string(1, point)), kUTF32) == std::nullopt);
}

TEST_CASE("An empty string gives the empty CFString in every encoding") {
    for (const uint32_t encoding : {0x0000U, 0x0100U, 0x0201U, 0x0500U, 0x0600U, 0x08000100U, 0x0C000100U, 0xFFFFU})
        CHECK(ReadAs("", encoding) == u"");
}

TEST_CASE("A string longer than its length byte can say is read whole") {
    const std::string longText(100000, 'x');
    for (const uint32_t encoding : {uint32_t{kUnknownEncoding}, uint32_t{kUTF8}, uint32_t{kISOLatin1}})
        CHECK(ReadAs(longText, encoding) == std::u16string(100000, u'x'));
}

TEST_CASE("Where Core Foundation makes no string, there is none, and the host string is released") {
    for (const uint32_t encoding : {uint32_t{kUnknownEncoding}, uint32_t{kUTF8}, uint32_t{kUTF16}})
        AtUsualAges([&](double age) {
            TestSession session(WithoutCFStrings(age));
            const Fault fault(1);
            CHECK(TextInCore(session, Text{"abcd", encoding}) == std::nullopt);
            CHECK(fault.Failed() == 1);
        });
}
