// Dates, strings and numbers: what a real Core Foundation was seen to answer, row by row. The stand-in must answer the
// same; where it is stricter on purpose, docs/stand-in.md says so.
#include "simulator/macos/CoreFoundation/number.h"
#include "simulator/macos/CoreFoundation/string.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <cmath>
#include <limits>
#include <optional>
#include <vector>

using namespace sim::macos;
using namespace tests;
using namespace std::string_literals;

namespace {

CFRef<CFStringRef> FromBytes(const std::string &bytes, CFStringEncoding encoding, bool isExternal) {
    return CFRef<CFStringRef>::Adopt(CFStringCreateWithBytes(kCFAllocatorDefault,
                                                             reinterpret_cast<const UInt8 *>(bytes.data()),
                                                             static_cast<CFIndex>(bytes.size()), encoding, isExternal));
}

bool ReadsAs(CFNumberRef number, CFNumberType type, auto expected) {
    decltype(expected) value{};
    const bool whole = CFNumberGetValue(number, type, &value);
    CHECK_EQ(value, expected);
    return whole;
}

template <class T> CFRef<CFNumberRef> Made(CFNumberType type, T value) {
    return CFRef<CFNumberRef>::Adopt(CFNumberCreate(kCFAllocatorDefault, type, &value));
}

} // namespace

TEST_CASE_FIXTURE(Balanced, "Fields become times as the real system has it") {
    struct Row {
        CFGregorianDate fields;
        CFAbsoluteTime at;
    };
    const std::vector<Row> rows{
        {{2014, 6, 30, 23, 30, 59.9}, 425863859.9}, // to the tenth of a second
        {{2009, 2, 30, 12, 0, 0}, 257688000.0},     // days run on
        {{2009, 13, 40, 25, 61, 61}, 287460121.0},  // so does everything else
        {{2009, 0, 1, 0, 0, 0}, 252460800.0},       // month 0 is January of the same year
        {{2009, 1, 1, 0, 0, 0}, 252460800.0},       {{2009, 13, 1, 0, 0, 0}, 283996800.0}, // 13 that of the next
        {{2009, 14, 1, 0, 0, 0}, 252460800.0},                                             // 14 and 15 January again
        {{2009, 15, 1, 0, 0, 0}, 252460800.0},
    };
    for (const Row &row : rows) {
        CAPTURE(row.at);
        CHECK_EQ(CFGregorianDateGetAbsoluteTime(row.fields, nullptr), row.at);
    }
}

TEST_CASE_FIXTURE(Balanced, "Times become fields as the real system has it") {
    struct Row {
        CFAbsoluteTime at;
        CFGregorianDate fields;
    };
    const std::vector<Row> rows{
        {425863859.9, {2014, 6, 30, 23, 30, std::fmod(425863859.9, 60)}},
        {257688000.0, {2009, 3, 2, 12, 0, 0}},
        {-1, {2000, 12, 31, 23, 59, 59}},
        {-1e-15, {2000, 12, 31, 23, 59, 60}}, // a full minute, just before 2001
    };
    for (const Row &row : rows) {
        CAPTURE(row.at);
        const CFGregorianDate date = CFAbsoluteTimeGetGregorianDate(row.at, nullptr);
        CHECK_EQ(date.year, row.fields.year);
        CHECK_EQ(date.month, row.fields.month);
        CHECK_EQ(date.day, row.fields.day);
        CHECK_EQ(date.hour, row.fields.hour);
        CHECK_EQ(date.minute, row.fields.minute);
        CHECK_EQ(date.second, row.fields.second);
    }
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double at : {kInfinity, -kInfinity, std::nan("")}) {
        const CFGregorianDate date = CFAbsoluteTimeGetGregorianDate(at, nullptr);
        CHECK_EQ(int{date.hour}, 24);
        CHECK_EQ(int{date.minute}, 60);
        CHECK(std::isnan(date.second));
    }
}

TEST_CASE_FIXTURE(Balanced, "Bytes become the text that the real system makes of them") {
    constexpr std::nullopt_t kNull = std::nullopt;
    constexpr CFStringEncoding kMacRoman = kCFStringEncodingMacRoman;
    constexpr CFStringEncoding kWindows = kCFStringEncodingWindowsLatin1;
    constexpr CFStringEncoding kUtf8 = kCFStringEncodingUTF8;
    constexpr CFStringEncoding kUtf16 = kCFStringEncodingUTF16;
    constexpr CFStringEncoding kUtf32 = kCFStringEncodingUTF32;
    struct Row {
        CFStringEncoding encoding;
        std::string bytes;
        std::optional<std::u16string> external;
        std::optional<std::u16string> internal;
        Row(CFStringEncoding number, std::string text, const std::optional<std::u16string> &result)
            : Row(number, std::move(text), result, result) {}
        Row(CFStringEncoding number, std::string text, std::optional<std::u16string> one,
            std::optional<std::u16string> other)
            : encoding(number), bytes(std::move(text)), external(std::move(one)), internal(std::move(other)) {}
    };
    const std::vector<Row> rows{
        {kMacRoman, "\x8E", u"\u00E9"},
        {kWindows, "\xE9\x80", u"\u00E9\u20AC"},
        {kCFStringEncodingISOLatin1, "\xE9\x80", u"\u00E9\u0080"},
        {kCFStringEncodingASCII, "a\xE9", u"a\u00E9"},
        {kUtf16, "\xFF\xFE\x41\x00"s, u"A", u"\uFEFFA"},
        {kUtf16, "\xFE\xFF\x00\x41"s, u"A", u"\uFFFE\u4100"},
        {kUtf16, "\x41\x00"s, u"\u4100", u"A"},
        {kUtf8, "\xEF\xBB\xBF\x61", u"a"},
        {kUtf8, "a\xFF", kNull},
        {kUtf8, "\xED\xA0\x80", kNull},
        {kUtf8, "\xC0\xAF", kNull},
        {kUtf8, "a\xA9", u"a\uFFFD"},
        {kUtf8, "\xA9\xA9z", u"\uFFFD\uFFFDz"},
        {kUtf8, "\xC3\xA9", u"\u00E9"},
        {kUtf8, "\xE2\xA9", kNull},
        {kUtf8, "a\xA8", kNull},
        {kUtf32, "\xFF\xFE\x00\x00\x41\x00\x00\x00"s, u"A"},
        {kUtf32, "\x00\xF6\x01\x00"s, kNull},
        {kUtf32, "\x00\x01\xF6\x00"s, u"\U0001F600"},
        {kUtf32, "a", u""},
        {kUtf32, "abc", u""},
        {kUtf32, "\xFF", u""},
        {kUtf32, "\xFF\xFE", kNull},
        {kUtf32, "\xFF\xFE\x00"s, kNull},
        {kUtf32, "\x00\x00"s, kNull},
        {kUtf32, "\x00\x00\xFE"s, kNull},
        {0x12345, "abc", kNull},
        {kWindows, "\x81", kNull},
        {kWindows, "\x8D", kNull},
        {kWindows, "\x8F", kNull},
        {kWindows, "\x90", kNull},
        {kWindows, "\x9D", kNull},
        {0x0A01, "\x82\xA0", u"\u3042"},         // Shift-JIS
        {0x0202, "\xA3", u"\u0141"},             // ISO Latin-2
        {0x0502, "\xC6", u"\u0416"},             // Windows Cyrillic
        {0x0A02, "\xF6", u"\u0416"},             // KOI8-R
        {0x0632, "\x81\x30\x81\x30", u"\u0080"}, // GB 18030
        {0x04000100, "a+AOk-", u"a\u00E9"},      // UTF-7
    };
    for (const Row &row : rows) {
        CAPTURE(row.encoding);
        CAPTURE(row.bytes);
        for (const bool isExternal : {true, false}) {
            const auto string = FromBytes(row.bytes, row.encoding, isExternal);
            const auto text = string ? std::optional(CharactersOf(string.Get())) : std::nullopt;
            CHECK(text == (isExternal ? row.external : row.internal));
        }
    }
}

TEST_CASE_FIXTURE(Balanced, "No bytes are one constant empty string in every encoding, known or not") {
    const auto first = FromBytes("", kCFStringEncodingUTF8, true);
    for (const CFStringEncoding encoding :
         {kCFStringEncodingMacRoman, kCFStringEncodingASCII, kCFStringEncodingUTF16, kCFStringEncodingUTF32}) {
        CHECK_EQ(FromBytes("", encoding, true).Get(), first.Get());
        CHECK_EQ(FromBytes("", encoding, false).Get(), first.Get());
    }
    for (const CFStringEncoding unknown : {0x12345U, 0xFFFFU})
        CHECK_EQ(FromBytes("", unknown, true).Get(), first.Get());
    CHECK_EQ(CFStringGetLength(first.Get()), 0);
    CHECK_EQ(CFGetRetainCount(first.Get()), 2147483647);
    CHECK_NE(first.Get(), CFSTR(""));
    CHECK(CFEqual(first.Get(), CFSTR("")));
}

TEST_CASE_FIXTURE(Balanced, "A C string is written as the real system does it") {
    struct Row {
        std::u16string text;
        CFIndex size;
        bool result;
        std::string written;
    };
    const std::vector<Row> rows{
        {u"\u00E9", 1, true, "####"}, {u"\u00E9", 0, false, "####"},  {u"\u00E9", 3, true, "\xC3\xA9\0#"s},
        {u"ab", 3, true, "ab\0#"s},   {u"a\xD83D", 4, false, "####"}, {u"a\0b"s, 4, true, "a\0b\0"s},
    };
    for (const Row &row : rows) {
        CAPTURE(row.size);
        std::string buffer(4, '#');
        const auto string = MakeString(std::u16string_view(row.text));
        CHECK_EQ(bool(CFStringGetCString(string.Get(), buffer.data(), row.size, kCFStringEncodingUTF8)), row.result);
        CHECK_EQ(buffer, row.written);
    }
}

TEST_CASE_FIXTURE(Balanced, "Strings are compared by UTF-16 unit") {
    CHECK_EQ(CFStringCompare(CFSTR("\uFFFD"), CFSTR("\U0001F600"), 0), kCFCompareGreaterThan);
    CHECK_EQ(CFStringCompare(CFSTR("\uD7FF"), CFSTR("\U0001F600"), 0), kCFCompareLessThan);
}

TEST_CASE_FIXTURE(Balanced, "Numbers are stored and read as the real system does it") {
    struct Row {
        CFRef<CFNumberRef> number;
        CFNumberType stored;
        CFIndex size;
        double asDouble;
        bool fitsInt64;
        std::optional<std::int64_t> asInt64;
        bool fitsLong;
        std::optional<long> asLong;
    };
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const std::vector<Row> &rows = [] {
        std::vector<Row> made;
        const auto add = [&](CFRef<CFNumberRef> number, auto... rest) { made.push_back({std::move(number), rest...}); };
        add(Made<SInt8>(kCFNumberSInt8Type, 7), kCFNumberSInt32Type, 4, 7.0, true, 7, true, 7);
        add(Made<SInt16>(kCFNumberSInt16Type, 300), kCFNumberSInt16Type, 2, 300.0, true, 300, true, 300);
        add(Made<SInt32>(kCFNumberSInt32Type, -5), kCFNumberSInt32Type, 4, -5.0, true, -5, true, -5);
        add(Made<SInt64>(kCFNumberSInt64Type, 3000000000), kCFNumberSInt64Type, 8, 3e9, true, 3000000000, false,
            -1294967296);
        add(Made<SInt64>(kCFNumberSInt64Type, 5), kCFNumberSInt32Type, 4, 5.0, true, 5, true, 5);
        add(Made<float>(kCFNumberFloat32Type, 1.5), kCFNumberFloat32Type, 4, 1.5, false, 1, false, 1);
        add(Made<double>(kCFNumberFloat64Type, 2.0), kCFNumberFloat64Type, 8, 2.0, true, 2, true, 2);
        add(Made<double>(kCFNumberFloat64Type, 1e300), kCFNumberFloat64Type, 8, 1e300, false, std::nullopt, false,
            std::nullopt);
        add(Made<float>(kCFNumberFloat32Type, static_cast<float>(kInfinity)), kCFNumberFloat64Type, 8, kInfinity, false,
            std::nullopt, false, std::nullopt);
        return made;
    }();
    for (const Row &row : rows) {
        CAPTURE(Describe(row.number.Get()));
        CHECK_EQ(Expect<Number>(row.number.Get()).StoredType(), row.stored);
        CHECK_EQ(CFNumberGetByteSize(row.number.Get()), row.size);
        CHECK_EQ(bool(CFNumberIsFloatType(row.number.Get())),
                 row.stored == kCFNumberFloat32Type || row.stored == kCFNumberFloat64Type);
        CHECK(ReadsAs(row.number.Get(), kCFNumberDoubleType, row.asDouble));
        std::int64_t wide = 0;
        CHECK_EQ(bool(CFNumberGetValue(row.number.Get(), kCFNumberSInt64Type, &wide)), row.fitsInt64);
        CHECK_EQ(wide, row.asInt64.value_or(wide));
        long narrow = 0;
        CHECK_EQ(bool(CFNumberGetValue(row.number.Get(), kCFNumberLongType, &narrow)), row.fitsLong);
        CHECK_EQ(narrow, row.asLong.value_or(narrow));
    }
    CHECK_EQ(CFNumberGetByteSize(Made<float>(kCFNumberFloat32Type, std::nanf("")).Get()), 8);
}

TEST_CASE_FIXTURE(Balanced,
                  "Integers from -1 to 12 are one object each, of 32 bits; their neighbours keep their type") {
    for (SInt8 value = -3; value <= 14; ++value) {
        CAPTURE(int{value});
        const bool isShared = value >= -1 && value <= 12;
        const auto narrow = Made<SInt8>(kCFNumberSInt8Type, value);
        const auto wide = Made<SInt64>(kCFNumberSInt64Type, value);
        CHECK_EQ(narrow.Get() == wide.Get(), isShared);
        CHECK_EQ(CFNumberGetByteSize(narrow.Get()), isShared ? 4 : 1);
        CHECK_EQ(CFNumberGetByteSize(wide.Get()), isShared ? 4 : 8);
    }
    CHECK_NE(MakeNumber(2.0).Get(), MakeNumber(2.0).Get());
}

TEST_CASE_FIXTURE(Balanced, "Numbers are equal when their values are, to the last bit") {
    struct Row {
        CFRef<CFNumberRef> one;
        CFRef<CFNumberRef> other;
        bool equal;
    };
    constexpr std::int64_t kBig = std::int64_t{1} << 53;
    std::vector<Row> rows;
    const auto add = [&](auto one, auto other, bool equal) {
        rows.push_back({MakeNumber(one), MakeNumber(other), equal});
    };
    add(0.0, -0.0, false);
    add(std::nan("1"), std::nan("2"), true);
    add(std::nan(""), 0.0, false);
    add(kBig + 1, static_cast<double>(kBig), false);
    add(kBig, static_cast<double>(kBig), true);
    add(std::int64_t{2}, 2.0, true);
    add(std::int64_t{2}, 2.5, false);
    add(std::numeric_limits<std::int64_t>::max(), 0x1p63, false);
    for (const Row &row : rows) {
        CAPTURE(Describe(row.one.Get()));
        CAPTURE(Describe(row.other.Get()));
        const auto dictionary = CFRef<CFMutableDictionaryRef>::Adopt(
            CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
        CFDictionarySetValue(dictionary.Get(), row.one.Get(), kCFBooleanTrue);
        CHECK_EQ(CFDictionaryGetValue(dictionary.Get(), row.other.Get()) != nullptr, row.equal);
        CHECK_EQ(bool(CFEqual(row.one.Get(), row.other.Get())), row.equal);
        CHECK_EQ(bool(CFEqual(row.other.Get(), row.one.Get())), row.equal);
        if (row.equal)
            CHECK_EQ(CFHash(row.one.Get()), CFHash(row.other.Get()));
    }
}
