#include "tests/simulator/macos/corefoundation/support.h"

#include <array>
#include <vector>

using namespace sim::macos;
using namespace tests;
using namespace std::string_literals;

namespace {

CFRef<CFMutableStringRef> MutableCopy(const std::u16string &text, CFIndex limit = 0) {
    return CFRef<CFMutableStringRef>::Adopt(
        CFStringCreateMutableCopy(nullptr, limit, MakeString(std::u16string_view(text)).Get()));
}

std::u16string Normalized(const std::u16string &text, CFStringNormalizationForm form) {
    const auto string = MutableCopy(text);
    CFStringNormalize(string.Get(), form);
    return CharactersOf(string.Get());
}

int Compare(const std::u16string &one, const std::u16string &other, CFStringCompareFlags options = 0) {
    return CFStringCompare(MakeString(std::u16string_view(one)).Get(), MakeString(std::u16string_view(other)).Get(),
                           options);
}

} // namespace

TEST_CASE_FIXTURE(Balanced, "A string of characters keeps the units it was given, well formed or not") {
    const std::array<UniChar, 3> units{0x41, 0xD83D, 0x42};
    const auto string = CFRef<CFStringRef>::Adopt(CFStringCreateWithCharacters(nullptr, units.data(), 3));
    CHECK_EQ(CFStringGetLength(string.Get()), 3);
    std::array<UniChar, 3> read{};
    CFStringGetCharacters(string.Get(), CFRangeMake(0, 3), read.data());
    CHECK(read == units);
    const auto empty = CFRef<CFStringRef>::Adopt(CFStringCreateWithCharacters(nullptr, nullptr, 0));
    CHECK_EQ(CFStringGetLength(empty.Get()), 0);
}

TEST_CASE_FIXTURE(Balanced, "Characters are read from within the string only") {
    std::array<UniChar, 4> read{};
    CFStringGetCharacters(CFSTR("abcd"), CFRangeMake(1, 2), read.data());
    CHECK_EQ(read[0], 'b');
    CHECK_EQ(read[1], 'c');
    CHECK_EQ(read[2], 0);
    CFStringGetCharacters(CFSTR("abcd"), CFRangeMake(4, 0), read.data());
    for (const CFRange range :
         {CFRangeMake(0, 5), CFRangeMake(5, 0), CFRangeMake(-1, 1), CFRangeMake(1, -1), CFRangeMake(3, 0x7fffffff)})
        CHECK(Contains(RefusalOf([&] { CFStringGetCharacters(CFSTR("abcd"), range, read.data()); }),
                       "CFStringGetCharacters was asked for units that CFString \"abcd\" does not have"));
}

TEST_CASE_FIXTURE(Balanced, "A mutable copy is another string with the same text") {
    const auto copy = CFRef<CFMutableStringRef>::Adopt(CFStringCreateMutableCopy(nullptr, 0, CFSTR("text")));
    CHECK(CFEqual(copy.Get(), CFSTR("text")));
    CHECK_EQ(CFGetRetainCount(copy.Get()), 1);
}

TEST_CASE_FIXTURE(Balanced, "A mutable string with a limit is never longer; no limit is 0") {
    CHECK_EQ(CFStringGetLength(MutableCopy(u"four", 4).Get()), 4);
    CHECK(Contains(RefusalOf([] { MutableCopy(u"fives", 4); }),
                   "a string with a limit of 4 units cannot hold \"fives\""));
    const auto full = MutableCopy(u"\u00E9", 1);
    CHECK(Contains(RefusalOf([&] { CFStringNormalize(full.Get(), kCFStringNormalizationFormD); }), "limit of 1"));
}

TEST_CASE_FIXTURE(Balanced, "All four normalization forms") {
    const std::u16string text = u"\u00E9e\u0301\uFB01\u1E9B\u0323\uD55C";
    CHECK(Normalized(text, kCFStringNormalizationFormD) == u"e\u0301e\u0301\uFB01\u017F\u0323\u0307\u1112\u1161\u11AB");
    CHECK(Normalized(text, kCFStringNormalizationFormKD) == u"e\u0301e\u0301fis\u0323\u0307\u1112\u1161\u11AB");
    CHECK(Normalized(text, kCFStringNormalizationFormC) == u"\u00E9\u00E9\uFB01\u1E9B\u0323\uD55C");
    CHECK(Normalized(text, kCFStringNormalizationFormKC) == u"\u00E9\u00E9fi\u1E69\uD55C");
    CHECK(Normalized(u"", kCFStringNormalizationFormD).empty());
    CHECK(Normalized(u"a\xD83D", kCFStringNormalizationFormD) == u"a\xD83D");
}

TEST_CASE_FIXTURE(Balanced, "Only a mutable string can be normalized") {
    const auto string = MakeString("abc");
    const auto immutable = const_cast<CFMutableStringRef>(string.Get());
    CHECK(Contains(RefusalOf([&] { CFStringNormalize(immutable, kCFStringNormalizationFormD); }), "immutable"));
}

TEST_CASE_FIXTURE(Balanced, "Without options a comparison is literal") {
    CHECK_EQ(Compare(u"abc", u"abc"), kCFCompareEqualTo);
    CHECK_EQ(Compare(u"abc", u"abd"), kCFCompareLessThan);
    CHECK_EQ(Compare(u"b", u"abc"), kCFCompareGreaterThan);
    CHECK_EQ(Compare(u"ab", u"abc"), kCFCompareLessThan);
    CHECK_EQ(Compare(u"", u""), kCFCompareEqualTo);
    CHECK_EQ(Compare(u"B", u"a"), kCFCompareLessThan);
    CHECK_EQ(Compare(u"\u00E9", u"e\u0301"), kCFCompareGreaterThan);
    CHECK_EQ(CFStringCompare(CFSTR("same"), MakeString("same").Get(), 0), kCFCompareEqualTo);
}

TEST_CASE_FIXTURE(Balanced, "Each option of a comparison makes its own difference vanish") {
    CHECK_EQ(Compare(u"STRASSE", u"stra\u00DFe", kCFCompareCaseInsensitive), kCFCompareEqualTo);
    CHECK_EQ(Compare(u"\u00C9", u"\u00E9", kCFCompareCaseInsensitive), kCFCompareEqualTo);
    CHECK_NE(Compare(u"\u00C9", u"e\u0301", kCFCompareCaseInsensitive), kCFCompareEqualTo);
    CHECK_EQ(Compare(u"\u00E9", u"e\u0301", kCFCompareNonliteral), kCFCompareEqualTo);
    CHECK_NE(Compare(u"\u00C9", u"e\u0301", kCFCompareNonliteral), kCFCompareEqualTo);
    CHECK_EQ(Compare(u"\u00C9", u"e\u0301", kCFCompareNonliteral | kCFCompareCaseInsensitive), kCFCompareEqualTo);
    CHECK_EQ(Compare(u"file 9", u"file 10", 0), kCFCompareGreaterThan);
    CHECK_EQ(Compare(u"file 9", u"file 10", kCFCompareNumerically), kCFCompareLessThan);
    CHECK_EQ(Compare(u"file 010", u"file 10", kCFCompareNumerically), kCFCompareEqualTo);
    CHECK_EQ(Compare(u"1.2.10", u"1.2.9", kCFCompareNumerically), kCFCompareGreaterThan);
    CHECK_EQ(Compare(u"a1", u"ab", kCFCompareNumerically), kCFCompareLessThan);
    CHECK_EQ(Compare(u"99999999999999999999", u"100000000000000000000", kCFCompareNumerically), kCFCompareLessThan);
}

TEST_CASE_FIXTURE(Balanced,
                  "The order in which queries sort: letters before case, accents in between, numbers by value") {
    constexpr CFStringCompareFlags kQueryOrder = kCFCompareNonliteral | kCFCompareLocalized | kCFCompareNumerically;
    const std::vector<std::u16string> ordered{u"", u"10 x", u"a", u"A", u"\u00E4", u"b", u"B 2", u"B 10", u"z"};
    for (std::size_t one = 0; one < ordered.size(); ++one)
        for (std::size_t other = 0; other < ordered.size(); ++other) {
            CAPTURE(one);
            CAPTURE(other);
            CHECK_EQ(Compare(ordered[one], ordered[other], kQueryOrder), one < other ? -1 : one > other ? 1 : 0);
        }
    CHECK_EQ(Compare(u"\u00E4", u"a\u0308", kQueryOrder), kCFCompareEqualTo);
    CHECK_EQ(Compare(u"ABC", u"abc", kCFCompareLocalized | kCFCompareCaseInsensitive), kCFCompareEqualTo);
    CHECK_EQ(Compare(u"9", u"10", kCFCompareLocalized), kCFCompareGreaterThan);
}

TEST_CASE_FIXTURE(Balanced, "Options of searches are refused by a comparison") {
    CHECK(Contains(RefusalOf([] { Compare(u"a", u"b", kCFCompareBackwards); }), "not modelled: 4"));
    CHECK(Contains(RefusalOf([] { Compare(u"a", u"b", kCFCompareAnchored); }), "not modelled: 8"));
}

TEST_CASE_FIXTURE(Balanced, "Text that cannot be written as UTF-8 is read with replacements by the tools' own words") {
    CHECK_EQ(Utf8(u"a\xD83D"), "a\uFFFD");
    CHECK(Utf16("a\xFF"
                "b") == u"a\uFFFDb");
    CHECK_EQ(Quoted(std::u16string(100, u'x')), "\"" + std::string(60, 'x') + "...\"");
}
