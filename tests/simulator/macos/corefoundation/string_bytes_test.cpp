#include "simulator/macos/CoreFoundation/string_encoding.h"
#include "tests/simulator/macos/corefoundation/support.h"

#include <array>
#include <optional>
#include <vector>

using namespace sim::macos;
using namespace tests;
using namespace std::string_literals;

namespace {

std::optional<std::u16string> From(const std::string &bytes, CFStringEncoding encoding) {
    const auto string = CFRef<CFStringRef>::Adopt(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(bytes.data()),
                                static_cast<CFIndex>(bytes.size()), encoding, true));
    return string ? std::optional(CharactersOf(string.Get())) : std::nullopt;
}

struct Row {
    const char *title;
    CFStringEncoding encoding;
    std::string bytes;
    std::optional<std::u16string> text;
};

std::optional<std::string> CString(const std::u16string &text, CFStringEncoding encoding, CFIndex size) {
    const auto string = MakeString(std::u16string_view(text));
    std::string buffer(static_cast<std::size_t>(size) + 1, '#');
    if (!CFStringGetCString(string.Get(), buffer.data(), size, encoding))
        return std::nullopt;
    CHECK_EQ(buffer.back(), '#');
    return buffer.substr(0, buffer.find('\0'));
}

} // namespace

TEST_CASE_FIXTURE(Balanced, "Bytes become text, or none when they are malformed") {
    const std::vector<Row> rows{
        {"MacRoman has the euro and a symbol of its maker", kCFStringEncodingMacRoman, "\xDB\xF0", u"\u20AC\uF8FF"},
        {"UTF-16, a mark and nothing else", kCFStringEncodingUTF16, "\xFF\xFE", u""},
        {"UTF-16, a byte too many", kCFStringEncodingUTF16, "\x00\x41\x00"s, u"A"},
        {"UTF-16, a lone surrogate stays", kCFStringEncodingUTF16, "\xD8\x3D"s, u"\xD83D"},
        {"UTF-16 BE", kCFStringEncodingUTF16BE, "\x00\x41"s, u"A"},
        {"UTF-16 BE keeps a mark", kCFStringEncodingUTF16BE, "\xFE\xFF\x00\x41"s, u"\uFEFFA"},
        {"UTF-16 LE", kCFStringEncodingUTF16LE, "\x41\x00"s, u"A"},
        {"UTF-8, four bytes", kCFStringEncodingUTF8, "\xF0\x9F\x98\x80", u"\xD83D\xDE00"},
        {"UTF-8, the last code point", kCFStringEncodingUTF8, "\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF"},
        {"UTF-8, beyond it", kCFStringEncodingUTF8, "\xF4\x90\x80\x80", std::nullopt},
        {"UTF-8, cut short", kCFStringEncodingUTF8, "a\xE2\x82", std::nullopt},
        {"UTF-8, a NUL", kCFStringEncodingUTF8, "a\0b"s, u"a\0b"s},
        {"UTF-32, a surrogate", kCFStringEncodingUTF32BE, "\x00\x00\xD8\x00"s, std::nullopt},
        {"UTF-32 LE", kCFStringEncodingUTF32LE, "\x00\xF6\x01\x00"s, u"\xD83D\xDE00"},
        {"the number of an encoding that is not modelled", 0x0B01, "abc", std::nullopt},
        {"the host's number for an unknown encoding", 0xFFFF, "abc", std::nullopt},
    };
    for (const Row &row : rows) {
        CAPTURE(row.title);
        CHECK(From(row.bytes, row.encoding) == row.text);
    }
}

TEST_CASE_FIXTURE(Balanced,
                  "MacRoman has a character for every byte, each a different one, and they lead back to the bytes") {
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    const std::optional<std::u16string> text = From(all, kCFStringEncodingMacRoman);
    REQUIRE(text);
    CHECK_EQ(text->size(), 256);
    CHECK(Encode(*text, kCFStringEncodingMacRoman) == all);
}

TEST_CASE_FIXTURE(Balanced, "A C string needs room for its terminator and not a byte more") {
    CHECK(CString(u"abc", kCFStringEncodingUTF8, 4) == "abc");
    CHECK(CString(u"abc", kCFStringEncodingUTF8, 3) == std::nullopt);
    CHECK(CString(u"\u00E9\u20AC\U0001F600", kCFStringEncodingUTF8, 10) == "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    CHECK(CString(u"\u00E9\u20AC\U0001F600", kCFStringEncodingUTF8, 9) == std::nullopt);
    CHECK(CString(u"", kCFStringEncodingUTF8, 1) == "");
    CHECK(CString(u"", kCFStringEncodingUTF8, 0) == std::nullopt);
}

TEST_CASE_FIXTURE(Balanced, "A lone surrogate cannot become a UTF-8 C string") {
    CHECK(CString(u"a\xD83D", kCFStringEncodingUTF8, 100) == std::nullopt);
    CHECK(CString(u"\xDE00\xD83D", kCFStringEncodingUTF8, 100) == std::nullopt);
    CHECK(CString(u"\xD83D\xDE00", kCFStringEncodingUTF8, 100) == "\xF0\x9F\x98\x80");
}

TEST_CASE_FIXTURE(Balanced, "An embedded NUL is written and ends the C string early") {
    const auto string = MakeString(u"a\0b"s);
    std::array<char, 4> buffer{'#', '#', '#', '#'};
    CHECK(CFStringGetCString(string.Get(), buffer.data(), 4, kCFStringEncodingUTF8));
    CHECK_EQ(std::string(buffer.data(), 4), "a\0b\0"s);
}

TEST_CASE_FIXTURE(Balanced, "A character that an encoding lacks makes the C string fail") {
    CHECK(CString(u"\u00E9", kCFStringEncodingASCII, 100) == std::nullopt);
    CHECK(CString(u"\u00E9", kCFStringEncodingISOLatin1, 100) == "\xE9");
    CHECK(CString(u"\u20AC", kCFStringEncodingISOLatin1, 100) == std::nullopt);
    CHECK(CString(u"\u20AC", kCFStringEncodingWindowsLatin1, 100) == "\x80");
    CHECK(CString(u"\u00E9", kCFStringEncodingMacRoman, 100) == "\x8E");
    CHECK(CString(u"\u0416", kCFStringEncodingMacRoman, 100) == std::nullopt);
    CHECK(CString(u"abc", 0x12345, 100) == std::nullopt);
}

TEST_CASE_FIXTURE(Balanced, "Less than no bytes, and no bytes where there should be some, are refused") {
    CHECK(Contains(RefusalOf([] {
                       From("", kCFStringEncodingUTF8);
                       CFStringCreateWithBytes(nullptr, nullptr, -1, 0, true);
                   }),
                   "CFStringCreateWithBytes"));
    CHECK(
        Contains(RefusalOf([] { CFStringCreateWithBytes(nullptr, nullptr, 1, 0, true); }), "CFStringCreateWithBytes"));
    CHECK(Contains(RefusalOf([] { CFStringCreateWithCharacters(nullptr, nullptr, -1); }),
                   "CFStringCreateWithCharacters"));
    CHECK(Contains(RefusalOf([] { CFStringCreateWithCString(nullptr, nullptr, kCFStringEncodingUTF8); }),
                   "CFStringCreateWithCString"));
}
