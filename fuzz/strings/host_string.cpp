// From the host to Core Foundation: a host string of any bytes, encoding and host age becomes exactly the text that ICU
// reads, or none; what comes of it survives the way back and forth again; and nothing stays behind.
//
// Input: the host's age, the encoding, the services that fail, then the bytes.
#include "fuzz/input.h"
#include "fuzz/strings/expected_text.h"
#include "host/owned.h"
#include "host/strings.h"
#include "simulator/macos/CoreFoundation/ledger.h"
#include "tests/whitebox/small_host.h"

#include <algorithm>

namespace {

using fuzz::Require;

constexpr double kVersions[] = {0.0, 2011.4, 2012.0, 2012.5, 2013.0, 2015.9, 2016.0, 3000.0};
constexpr CFStringEncoding kEncodings[] = {
    kCFStringEncodingMacRoman,      kCFStringEncodingUnicode, kCFStringEncodingISOLatin1,
    kCFStringEncodingWindowsLatin1, kCFStringEncodingASCII,   kCFStringEncodingUTF8,
    kCFStringEncodingUTF32,         kHostUnknownEncoding,     0x12345,
};

enum Fault : uint8_t {
    kNoEncoding = 1,
    kNoLength = 2,
    kNoContents = 4,
    kFirstCFString = 8,
    kSecondCFString = 16,
    kNoUnlock = 32
};

/// The text of bytes in UTF-16 or UTF-32 of a stated order.
template <class Unit> std::u32string Units(std::string_view bytes, bool isBig) {
    std::u32string units;
    for (size_t place = 0; place + sizeof(Unit) <= bytes.size(); place += sizeof(Unit)) {
        char32_t unit = 0;
        for (size_t i = 0; i < sizeof(Unit); i++)
            unit = unit << 8 | static_cast<unsigned char>(bytes[place + (isBig ? i : sizeof(Unit) - 1 - i)]);
        units += unit;
    }
    return units;
}

/// External representation: a mark tells the order and goes away, and without one it is big-endian.
std::optional<std::u16string> ReadUTF32(std::string_view bytes) {
    // Too few bytes for a unit have no text only where they could be the beginning of a mark.
    if (bytes.size() == 2 || bytes.size() == 3)
        if (std::string_view("\xFF\xFE\0", 3).starts_with(bytes) || std::string_view("\0\0\xFE", 3).starts_with(bytes))
            return std::nullopt;
    const bool isLittle = bytes.starts_with(std::string_view("\xFF\xFE\0\0", 4));
    if (isLittle || bytes.starts_with(std::string_view("\0\0\xFE\xFF", 4)))
        bytes.remove_prefix(4);
    std::u16string text;
    for (const char32_t point : Units<char32_t>(bytes, !isLittle)) {
        if (point > 0x10FFFF || (point >= 0xD800 && point < 0xE000))
            return std::nullopt;
        if (point >= 0x10000)
            text += static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10));
        text += static_cast<char16_t>(point >= 0x10000 ? 0xDC00 + (point & 0x3FF) : point);
    }
    return text;
}

/// A byte A9 where a sequence begins stands for U+FFFD; everything else that is malformed has no text.
std::optional<std::u16string> ReadUTF8(std::string_view bytes) {
    std::string mended;
    while (!bytes.empty()) {
        const auto first = static_cast<unsigned char>(bytes.front());
        const size_t length = first < 0xC0 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
        mended += first == 0xA9 ? "\xEF\xBF\xBD" : bytes.substr(0, length);
        bytes.remove_prefix(std::min(length, bytes.size()));
    }
    return fuzz::Decoded(mended, "UTF-8");
}

std::optional<std::u16string> Expected(std::string_view bytes, CFStringEncoding encoding) {
    if (bytes.empty())
        return std::u16string();
    switch (encoding) {
    case kCFStringEncodingMacRoman:
    case kHostUnknownEncoding:
        return fuzz::Decoded(bytes, "macos-0_2-10.2");
    case kCFStringEncodingUnicode: {
        const std::u32string units = Units<char16_t>(bytes, false);
        return std::u16string(units.begin(), units.end());
    }
    case kCFStringEncodingISOLatin1:
    case kCFStringEncodingASCII:
        return fuzz::Decoded(bytes, "ISO-8859-1");
    case kCFStringEncodingWindowsLatin1:
        // ICU takes the five bytes without a character for controls.
        if (bytes.find_first_of("\x81\x8D\x8F\x90\x9D") != bytes.npos)
            return std::nullopt;
        return fuzz::Decoded(bytes, "ibm-5348_P100-1997");
    case kCFStringEncodingUTF8:
        return ReadUTF8(bytes.starts_with("\xEF\xBB\xBF") ? bytes.substr(3) : bytes);
    case kCFStringEncodingUTF32:
        return ReadUTF32(bytes);
    default:
        return std::nullopt;
    }
}

std::u16string TextOf(CFStringRef string) {
    const CFIndex length = CFStringGetLength(string);
    std::u16string text(static_cast<size_t>(length), u'\0');
    CFStringGetCharacters(string, CFRangeMake(0, length), reinterpret_cast<UniChar *>(text.data()));
    return text;
}

CFStringRef NewMark() {
    constexpr UniChar kText[] = {u'C', u'F'};
    return CFStringCreateWithCharacters(kCFAllocatorDefault, kText, 2);
}

std::optional<std::u16string> Taken(CFStringRef string) {
    if (!string)
        return std::nullopt;
    std::u16string text = TextOf(string);
    CFRelease(string);
    return text;
}

/// To the host and back. A C string ends at the first zero, and no host string is empty.
void CheckRoundTrip(whitebox::SmallHost &host, const std::u16string &text) {
    const auto string = OwnedCF<CFStringRef>::Adopt(CFStringCreateWithCharacters(
        kCFAllocatorDefault, reinterpret_cast<const UniChar *>(text.data()), static_cast<CFIndex>(text.size())));
    const auto built = OwnedString::Adopt(CFString2RBString(string.Get()));
    const std::u16string upToZero = text.substr(0, text.find(u'\0'));
    const auto utf8 = fuzz::InUTF8(text);
    if (!utf8 || upToZero.empty()) {
        Require(!built);
        return;
    }
    Require(static_cast<bool>(built));
    Require(host.Read(built.Get()) == whitebox::HostText{*fuzz::InUTF8(upToZero), kCFStringEncodingUTF8});
    host.cfString = nullptr;
    const bool beginsWithMark = upToZero.starts_with(u'\uFEFF');
    Require(Taken(RBString2CFString(built.Get())) == (beginsWithMark ? upToZero.substr(1) : upToZero));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    fuzz::Input input(bytes, size);
    const double version = input.Choose(kVersions);
    const CFStringEncoding encoding = input.Choose(kEncodings);
    const auto faults = input.Take<uint8_t>();

    const auto before = sim::macos::ledger::LiveCount();
    whitebox::SmallHost host(version);
    host.keepsCalls = false;
    int asked = 0;
    host.cfString = [&] {
        asked++;
        return faults & (asked == 1 ? kFirstCFString : kSecondCFString) ? NewMark() : nullptr;
    };
    REALstringStruct *string = host.NewString(input.Rest(), encoding);
    if (faults & kNoEncoding)
        host.Withhold("REALGetStringEncoding");
    if (faults & kNoLength)
        host.Withhold("LenB");
    if (faults & kNoContents)
        host.Withhold("StringGetCString");

    const auto text = Taken(RBString2CFString(string));

    const CFStringEncoding seen = faults & kNoEncoding ? kCFStringEncodingMacRoman : encoding;
    const int32_t questions = seen == kHostUnknownEncoding ? 0 : version >= 2012.0 ? 2 : 1;
    if (questions > 0 && faults & kFirstCFString) {
        Require(asked == 1 && text == u"CF");
    } else if (questions > 1 && faults & kSecondCFString) {
        Require(asked == 2 && text == u"CF");
    } else {
        Require(asked == questions);
        if (version < 2016.0 || !(faults & (kNoLength | kNoContents)))
            Require(text == Expected(input.Rest(), seen));
        else if (faults & kNoLength)
            Require(text == Expected({}, seen));
        else if (!input.Rest().empty())
            Require(!text);
    }

    host.Take(string);
    if (text) {
        if (faults & kNoEncoding)
            return 0; // The way back would be read as MacRoman.
        if (!(faults & (kNoLength | kNoContents)))
            CheckRoundTrip(host, *text);
    }
    Require(host.Alive() == 0);
    Require(host.raised.empty());
    Require(sim::macos::ledger::LiveCount() == before);
    return 0;
}
