// Building host strings from bytes: every encoding on hosts of every age, both sides of each limit, services that are
// missing, and C++ exceptions of the host.
#include <doctest/doctest.h>

#include "host/exceptions.h"
#include "host/strings.h"
#include "tests/support/host_ages.h"
#include "tests/whitebox/fake_resolver.h"
#include "tests/whitebox/restored.h"
#include "tests/whitebox/small_host.h"

#include <stdexcept>
#include <typeinfo>
#include <utility>

using tests::AtAges;
using whitebox::FakeResolver;
using whitebox::HostException;
using whitebox::HostText;
using whitebox::Restored;
using whitebox::SmallHost;

namespace {

constexpr CFStringEncoding kUTF8 = kCFStringEncodingUTF8;
constexpr CFStringEncoding kUTF16 = kCFStringEncodingUnicode;
constexpr CFStringEncoding kUTF32 = kCFStringEncodingUTF32;

constexpr double kVersions[] = {0.0, 2011.4, 2012.0, 2012.5, 2013.0, 2015.9, 2016.0, 3000.0};

using Text = std::optional<HostText>;
using Calls = std::vector<std::string>;

Text Build(SmallHost &host, std::string_view bytes, CFStringEncoding encoding) {
    // In memory of exactly their size: a read beyond it is caught.
    const std::vector<char> exact(bytes.begin(), bytes.end());
    return host.Take(REALBuildUnicodeString(exact.data(), static_cast<int64_t>(exact.size()), encoding));
}

template <class Unit> std::string BytesOf(std::initializer_list<Unit> units) {
    std::string bytes;
    for (const Unit unit : units)
        bytes.append(reinterpret_cast<const char *>(&unit), sizeof unit);
    return bytes;
}

std::string Points(std::initializer_list<char32_t> points) { return BytesOf<char32_t>(points); }

std::string Repeated(std::string_view text, size_t count) {
    std::string all;
    while (count--)
        all += text;
    return all;
}

/// Calls without the release of what Build's caller takes.
Calls BuildCalls(SmallHost &host) {
    Calls calls = host.Calls();
    REQUIRE_FALSE(calls.empty());
    REQUIRE(calls.back() == "REALUnlockString()");
    calls.pop_back();
    return calls;
}

} // namespace

TEST_CASE("No bytes, or a length outside 1 to 0x7FFFFFFF, give no string, and the host is not asked") {
    AtAges(kVersions, [&](double version) {
        for (const CFStringEncoding encoding : {CFStringEncoding{0}, kUTF8, kUTF16, kUTF32}) {
            SmallHost host(version);
            CHECK(REALBuildUnicodeString(nullptr, 3, encoding) == nullptr);
            for (const int64_t length : {INT64_C(0), INT64_C(-1), INT64_MIN, INT64_C(0x80000000), INT64_MAX})
                CHECK(REALBuildUnicodeString("abc", length, encoding) == nullptr);
            CHECK(host.Calls().empty());
        }
    });
}

TEST_CASE("\"abc\" in MacRoman, Windows Latin-1 or an unknown encoding is built as ASCII") {
    AtAges(kVersions, [&](double version) {
        for (const CFStringEncoding encoding : {0x0000U, 0x0500U, 0xFFFFU}) {
            CAPTURE(encoding);
            SmallHost host(version);
            CHECK(Build(host, "abc", encoding) == Text{{"abc", 0x0600}});
            CHECK(BuildCalls(host) == Calls{"REALBuildString(3)", "REALSetStringEncoding(1536)"});
            CHECK(Build(host, std::string(1, '\0'), encoding) == Text{{std::string(1, '\0'), 0x0600}});
            CHECK(Build(host, "\x7F", encoding) == Text{{"\x7F", 0x0600}});
        }
    });
}

TEST_CASE("One byte above 0x7F anywhere keeps MacRoman, Windows Latin-1 or the unknown encoding") {
    AtAges(kVersions, [&](double version) {
        for (const CFStringEncoding encoding : {0x0000U, 0x0500U, 0xFFFFU})
            for (const char *text : {"\xE9", "\x80xy", "xy\xFF", "x\x80y"}) {
                SmallHost host(version);
                CHECK(Build(host, text, encoding) == Text{{text, encoding}});
            }
    });
}

TEST_CASE("Every other one-byte encoding and UTF-8 are built as they are, ASCII or not") {
    AtAges(kVersions, [&](double version) {
        for (const CFStringEncoding encoding : {0x0201U, 0x0600U, 0x08000100U, 0x12345U, 0xFFFFFFFFU})
            for (const char *text : {"abc", "\xC3\xA9", "\xFF"}) {
                SmallHost host(version);
                CHECK(Build(host, text, encoding) == Text{{text, encoding}});
                CHECK(host.CallCount("REALBuildString") == 1);
                CHECK(host.CallCount("REALConvertString") == 0);
            }
    });
}

TEST_CASE("UTF-16 is built and converted by the host from 2012.0 on") {
    AtAges({2012.0, 2012.5, 2013.0, 2016.0, 3000.0}, [&](double version) {
        SmallHost host(version);
        CHECK(Build(host, BytesOf<char16_t>({u'a', 0x00E9, 0xD83D, 0xDE00}), kUTF16) ==
              Text{{"a\u00E9\U0001F600", kUTF8}});
        CHECK(BuildCalls(host) ==
              Calls{"REALBuildStringWithEncoding(8, 256)", "REALConvertString(134217984)", "REALUnlockString()"});
    });
}

TEST_CASE("UTF-16 is built, tagged and converted on hosts below 2012.0") {
    AtAges({0.0, 2011.4, 2011.99}, [&](double version) {
        SmallHost host(version);
        CHECK(Build(host, BytesOf<char16_t>({u'a', 0x00E9, 0xD83D, 0xDE00}), kUTF16) ==
              Text{{"a\u00E9\U0001F600", kUTF8}});
        CHECK(BuildCalls(host) == Calls{"REALBuildString(8)", "REALSetStringEncoding(256)",
                                        "REALConvertString(134217984)", "REALUnlockString()"});
    });
}

TEST_CASE("UTF-32 is built and converted by the host from 2013.0 on") {
    AtAges({2013.0, 2013.04, 2016.0, 3000.0}, [&](double version) {
        SmallHost host(version);
        CHECK(Build(host, Points({U'a', 0x1F600}), kUTF32) == Text{{"a\U0001F600", kUTF8}});
        CHECK(BuildCalls(host) ==
              Calls{"REALBuildStringWithEncoding(8, 201326848)", "REALConvertString(134217984)", "REALUnlockString()"});
    });
}

TEST_CASE("UTF-32 goes through UTF-16 on hosts below 2013.0") {
    AtAges({0.0, 2011.4, 2012.0, 2012.99}, [&](double version) {
        SmallHost host(version);
        const auto built = [&](std::initializer_list<char32_t> points) { return Build(host, Points(points), kUTF32); };
        CHECK(built({0x1F600}) == Text{{"\xF0\x9F\x98\x80", kUTF8}});
        CHECK(built({U'a', 0x1F600, U'b'}) == Text{{"a\U0001F600b", kUTF8}});
        CHECK(built({0xFFFF}) == Text{{"\uFFFF", kUTF8}});
        CHECK(built({0x10000}) == Text{{"\U00010000", kUTF8}});
        CHECK(built({0x10FFFF}) == Text{{"\U0010FFFF", kUTF8}});
        CHECK(built({0xD7FF, 0xE000}) == Text{{"\uD7FF\uE000", kUTF8}});
    });
}

TEST_CASE("UTF-32 0x1F600 gives the pair 0xD83D 0xDE00 on hosts below 2013.0") {
    for (const auto &[version, encoding] : {std::pair{0.0, 0xFFFFU}, {2011.4, 0xFFFFU}, {2012.5, 0x0100U}}) {
        SmallHost host(version);
        Build(host, Points({0x1F600}), kUTF32);
        CHECK(host.built == HostText{BytesOf<char16_t>({0xD83D, 0xDE00}), encoding});
    }
}

TEST_CASE("UTF-32 surrogates are dropped on hosts below 2013.0") {
    AtAges({0.0, 2012.5}, [&](double version) {
        SmallHost host(version);
        for (const char32_t surrogate : {0xD800U, 0xDBFFU, 0xDC00U, 0xDFFFU}) {
            CHECK(Build(host, Points({surrogate}), kUTF32) == Text{{"", kUTF8}});
            CHECK(Build(host, Points({U'a', surrogate, U'b'}), kUTF32) == Text{{"ab", kUTF8}});
        }
        CHECK(Build(host, Points({0xD83D, 0xDE00}), kUTF32) == Text{{"", kUTF8}});
    });
}

TEST_CASE("UTF-32 code points from 0x110000 on give 0xFFFD on hosts below 2013.0") {
    AtAges({0.0, 2012.5}, [&](double version) {
        SmallHost host(version);
        for (const char32_t point : {0x110000U, 0x0011D800U, 0x7FFFFFFFU, 0xFFFFFFFFU, 0x8000D800U})
            CHECK(Build(host, Points({point}), kUTF32) == Text{{"\uFFFD", kUTF8}});
    });
}

TEST_CASE("UTF-32 with bytes left over drops them on hosts below 2013.0") {
    SmallHost host(2011.4);
    for (const char *rest : {"x", "xy", "xyz"})
        CHECK(Build(host, Points({U'a', U'b'}) + rest, kUTF32) == Text{{"ab", kUTF8}});
    CHECK(Build(host, "xyz", kUTF32) == Text{{"", kUTF8}});
}

TEST_CASE("UTF-32 text on both sides of 800 bytes gives the same on hosts below 2013.0") {
    AtAges({0.0, 2012.5}, [&](double version) {
        for (const size_t count : {1U, 198U, 199U, 200U, 201U, 5000U}) {
            CAPTURE(count);
            SmallHost host(version);
            CHECK(Build(host, Repeated(Points({U'x'}), count), kUTF32) == Text{{Repeated("x", count), kUTF8}});
            // Two units for each point, as many as there can be.
            CHECK(Build(host, Repeated(Points({0x10FFFF}), count), kUTF32) ==
                  Text{{Repeated("\U0010FFFF", count), kUTF8}});
            for (const char *rest : {"1", "12", "123"})
                CHECK(Build(host, Repeated(Points({0x1F600}), count) + rest, kUTF32) ==
                      Text{{Repeated("\U0001F600", count), kUTF8}});
        }
    });
}

TEST_CASE("A host without \"REALBuildString\" gets no string") {
    SmallHost host(2011.4);
    host.Withhold("REALBuildString");
    for (const CFStringEncoding encoding : {CFStringEncoding{0}, kUTF8, kUTF16, kUTF32})
        CHECK(Build(host, "abcd", encoding) == std::nullopt);
    CHECK(host.Calls().empty());
}

TEST_CASE("A host without \"REALSetStringEncoding\" gets the string untagged") {
    SmallHost host(2013.04);
    host.Withhold("REALSetStringEncoding");
    CHECK(Build(host, "abc", kUTF8) == Text{{"abc", 0xFFFF}});
}

TEST_CASE("A host without \"REALBuildStringWithEncoding\" has nothing to convert") {
    SmallHost host(2013.04);
    host.Withhold("REALBuildStringWithEncoding");
    for (const CFStringEncoding encoding : {kUTF16, kUTF32})
        CHECK(Build(host, "abcd", encoding) == std::nullopt);
    CHECK(host.Calls().empty());
}

TEST_CASE("A host without \"REALConvertString\" gets no string, and the intermediate one is released") {
    AtAges({2011.4, 2012.5, 2013.04}, [&](double version) {
        for (const CFStringEncoding encoding : {kUTF16, kUTF32}) {
            SmallHost host(version);
            host.Withhold("REALConvertString");
            CHECK(Build(host, "abcd", encoding) == std::nullopt);
            CHECK(host.Alive() == 0);
        }
    });
}

TEST_CASE("UTF-16 of no length at all is still built, and a length that no text has is not") {
    AtAges({2011.4, 2012.5}, [&](double version) {
        SmallHost host(version);
        CHECK(host.Take(REALBuildUnicodeStringUTF16("", 0)) == Text{{"", kUTF8}});
        const size_t calls = host.Calls().size();
        for (const int64_t length : {INT64_C(-1), INT64_MIN, INT64_C(0x80000000), INT64_C(0x100000002), INT64_MAX})
            CHECK(REALBuildUnicodeStringUTF16("ab", length) == nullptr);
        CHECK(REALBuildUnicodeStringUTF16(nullptr, 2) == nullptr);
        CHECK(host.Calls().size() == calls);
    });
}

namespace {

std::vector<int32_t> builtLengths;

REALstringStruct *BuildNothing(const void *, int32_t length) {
    builtLengths.push_back(length);
    return nullptr;
}

} // namespace

TEST_CASE("The host is asked for texts of up to 2 GiB but one byte") {
    const Restored build(REALBuildString);
    FakeResolver resolver;
    resolver.Offer("REALBuildString", BuildNothing);
    builtLengths.clear();
    for (const int64_t length : {INT64_C(1), INT64_C(0x7FFFFFFF), INT64_C(0x80000000)})
        CHECK(REALBuildUnicodeString("a", length, kUTF8) == nullptr);
    CHECK(builtLengths == std::vector<int32_t>{1, 0x7FFFFFFF});
    builtLengths.clear();
    for (const int64_t length : {INT64_C(0), INT64_C(0x7FFFFFFF), INT64_C(0x80000000)})
        CHECK(REALBuildUnicodeStringUTF16("a", length) == nullptr);
    CHECK(builtLengths == std::vector<int32_t>{0, 0x7FFFFFFF});
}

TEST_CASE("A host that throws while the intermediate string is given up gets the exception in place of the text") {
    SmallHost host(2013.04);
    bool armed = true;
    host.Before("REALUnlockString", [&] {
        if (std::exchange(armed, false))
            throw std::range_error("late");
    });
    CHECK(Build(host, "abcd", kUTF16) == std::nullopt);
    CHECK(host.raised == std::vector<HostException>{{"OutOfBoundsException", HostText{"late", 0x0600}, 0}});
    CHECK(host.Alive() == 0);
}

namespace {

struct CastOfTheHost : std::bad_cast {
    const char *what() const noexcept override { return "five and a half"; }
};

struct Kind {
    void (*thrower)();
    HostException raised;
};

const Kind kKinds[] = {
    {[] { throw std::range_error("one"); }, {"OutOfBoundsException", HostText{"one", 0x0600}, 0}},
    {[] { throw std::out_of_range("two"); }, {"OutOfBoundsException", HostText{"two", 0x0600}, 0}},
    {[] { throw std::overflow_error("three"); }, {"OutOfBoundsException", HostText{"three", 0x0600}, 0}},
    {[] { throw std::underflow_error("four"); }, {"OutOfBoundsException", HostText{"four", 0x0600}, 0}},
    {[] { throw std::bad_cast(); }, {"IllegalCastException", HostText{std::bad_cast().what(), 0x0600}, 0}},
    {[] { throw CastOfTheHost(); }, {"IllegalCastException", HostText{"five and a half", 0x0600}, 0}},
    {[] { throw std::logic_error("six"); }, {"RuntimeException", HostText{"six", 0x0600}, 0}},
    {[] { throw std::bad_alloc(); }, {"RuntimeException", HostText{std::bad_alloc().what(), 0x0600}, 0}},
    {[] { throw 42; }, {"RuntimeException", HostText{"Sorry, but there was an unnamed C++ Exception.", 0x0600}, 0}},
    {[] { throw std::runtime_error(""); }, {"RuntimeException", std::nullopt, 0}},
};

struct Step {
    double version;
    CFStringEncoding encoding;
    const char *service;
};

const Step kSteps[] = {
    {2011.4, kUTF8, "REALBuildString"},     {2013.04, 0x0500, "REALSetStringEncoding"},
    {2011.4, kUTF16, "REALBuildString"},    {2011.4, kUTF16, "REALSetStringEncoding"},
    {2011.4, kUTF16, "REALConvertString"},  {2012.5, kUTF16, "REALBuildStringWithEncoding"},
    {2012.5, kUTF16, "REALConvertString"},  {2011.4, kUTF32, "REALBuildString"},
    {2012.5, kUTF32, "REALConvertString"},  {2013.04, kUTF32, "REALBuildStringWithEncoding"},
    {2013.04, kUTF32, "REALConvertString"},
};

} // namespace

TEST_CASE("A C++ exception at any step of building a string becomes the host exception of its kind") {
    for (const Kind &kind : kKinds)
        for (const Step &step : kSteps) {
            CAPTURE(step.service);
            CAPTURE(step.version);
            SmallHost host(step.version);
            bool armed = true;
            host.Before(step.service, [&] {
                if (std::exchange(armed, false))
                    kind.thrower();
            });
            CHECK(Build(host, std::string(std::string_view("abc\0", 4)), step.encoding) == std::nullopt);
            CHECK(host.raised == std::vector{kind.raised});
            CHECK(host.Alive() == 0);
            // The next string is built as if nothing had been.
            CHECK(Build(host, "abcd", kUTF8) == Text{{"abcd", kUTF8}});
        }
}

TEST_CASE(
    "A host that throws whenever a string is built gets that exception and the one out of its message, both bare") {
    for (const Kind &kind : kKinds) {
        SmallHost host(2013.04);
        host.Before("REALBuildString", kind.thrower);
        CHECK(Build(host, "abc", kUTF8) == std::nullopt);
        const HostException bare = {kind.raised.className, std::nullopt, 0};
        // Nothing is built for an empty description, so nothing throws a second time.
        CHECK(host.raised == std::vector<HostException>(kind.raised.message ? 2 : 1, bare));
        CHECK(host.Alive() == 0);
    }
}

TEST_CASE("An exception out of the raising itself does not silence the next one") {
    SmallHost host(2013.04);
    bool armed = true;
    host.Before("PluginNewInstance", [&] {
        if (std::exchange(armed, false))
            throw std::runtime_error("while raising");
    });
    int builds = 0;
    host.Before("REALBuildString", [&] {
        if (++builds % 2 == 1)
            throw std::range_error("while building");
    });
    CHECK_THROWS_AS(Build(host, "abc", kUTF8), std::runtime_error);
    CHECK(host.raised.empty());
    CHECK(host.Alive() == 0);
    CHECK(Build(host, "abc", kUTF8) == std::nullopt);
    CHECK(host.raised == std::vector<HostException>{{"OutOfBoundsException", HostText{"while building", 0x0600}, 0}});
}
