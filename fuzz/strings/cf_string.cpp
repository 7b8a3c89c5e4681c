// From Core Foundation to the host: any UTF-16 text, and any bytes in any encoding, become exactly the host string that
// the host's age prescribes, or none; and nothing stays behind.
//
// Input: the host's age, what to do, then the bytes; for bytes their encoding and the length that is claimed.
#include "fuzz/input.h"
#include "fuzz/strings/expected_text.h"
#include "host/owned.h"
#include "host/strings.h"
#include "simulator/macos/CoreFoundation/ledger.h"
#include "tests/whitebox/small_host.h"

#include <algorithm>
#include <vector>

namespace {

using fuzz::Require;
using whitebox::HostText;
using whitebox::SmallHost;

constexpr double kVersions[] = {0.0, 2011.4, 2012.0, 2012.5, 2013.0, 2015.9, 2016.0, 3000.0};
constexpr CFStringEncoding kEncodings[] = {
    kCFStringEncodingMacRoman,      kCFStringEncodingUnicode, kCFStringEncodingISOLatin1,
    kCFStringEncodingWindowsLatin1, kCFStringEncodingASCII,   kCFStringEncodingUTF8,
    kCFStringEncodingUTF32,         kHostUnknownEncoding,     0x12345,
};

/// UTF-16 as the host turns it into UTF-8: a lone surrogate becomes U+FFFD.
std::string AsHostConverts(std::u16string text) {
    for (size_t i = 0; i < text.size(); i++) {
        const auto isLead = [](char16_t unit) { return (unit & 0xFC00) == 0xD800; };
        const auto isTrail = [](char16_t unit) { return (unit & 0xFC00) == 0xDC00; };
        if (isLead(text[i]) && i + 1 < text.size() && isTrail(text[i + 1]))
            i++;
        else if (isLead(text[i]) || isTrail(text[i]))
            text[i] = u'\uFFFD';
    }
    return *fuzz::InUTF8(text);
}

template <class Unit> std::basic_string<Unit> Units(std::string_view bytes) {
    std::basic_string<Unit> units(bytes.size() / sizeof(Unit), Unit());
    std::memcpy(units.data(), bytes.data(), units.size() * sizeof(Unit));
    return units;
}

/// What hosts that do not know UTF-32 are given: surrogates are dropped, points beyond the last replaced.
std::u16string UTF32ByHand(std::string_view bytes) {
    std::u16string text;
    for (const char32_t point : Units<char32_t>(bytes)) {
        if (point >= 0xD800 && point <= 0xDFFF)
            continue;
        if (point > 0x10FFFF)
            text += u'\uFFFD';
        else if (point > 0xFFFF)
            (text += static_cast<char16_t>(0xD7C0 + (point >> 10))) += static_cast<char16_t>(0xDC00 + point % 0x400);
        else
            text += static_cast<char16_t>(point);
    }
    return text;
}

std::string UTF32ByHost(std::string_view bytes) {
    std::u16string text;
    for (const char32_t point : Units<char32_t>(bytes)) {
        const bool isCharacter = point <= 0x10FFFF && !(point >= 0xD800 && point <= 0xDFFF);
        text += isCharacter ? UTF32ByHand({reinterpret_cast<const char *>(&point), 4}) : u"\uFFFD";
    }
    return *fuzz::InUTF8(text);
}

HostText ExpectedString(std::string_view bytes, CFStringEncoding encoding, double version) {
    const bool isASCII = std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte >= 0; });
    switch (encoding) {
    case kCFStringEncodingUnicode:
        return {AsHostConverts(Units<char16_t>(bytes)), kCFStringEncodingUTF8};
    case kCFStringEncodingUTF32:
        return {version < 2013.0 ? AsHostConverts(UTF32ByHand(bytes)) : UTF32ByHost(bytes), kCFStringEncodingUTF8};
    case kCFStringEncodingMacRoman:
    case kCFStringEncodingWindowsLatin1:
    case kHostUnknownEncoding:
        return {std::string(bytes), isASCII ? CFStringEncoding{kCFStringEncodingASCII} : encoding};
    default:
        return {std::string(bytes), encoding};
    }
}

void CheckBytes(SmallHost &host, fuzz::Input &input, double version) {
    const CFStringEncoding encoding = input.Choose(kEncodings);
    // In memory of exactly their size.
    const auto text = input.Rest().substr(std::min<size_t>(1, input.Rest().size()));
    const auto kind = input.Take<uint8_t>();
    const std::vector<char> bytes(text.begin(), text.end());
    const auto actual = static_cast<int64_t>(bytes.size());
    const int64_t lengths[] = {actual, actual, actual, 0, -1, INT64_MIN, INT64_C(0x80000000), INT64_MAX};
    const int64_t length = lengths[kind % std::size(lengths)];

    const auto built = host.Take(REALBuildUnicodeString(bytes.data(), length, encoding));
    if (length != actual || bytes.empty())
        Require(!built);
    else
        Require(built == ExpectedString({bytes.data(), bytes.size()}, encoding, version));
    Require(!REALBuildUnicodeString(nullptr, length, encoding));
}

void CheckString(SmallHost &host, fuzz::Input &input) {
    std::u16string text = Units<char16_t>(input.Rest());
    const auto string = OwnedCF<CFStringRef>::Adopt(CFStringCreateWithCharacters(
        kCFAllocatorDefault, reinterpret_cast<const UniChar *>(text.data()), static_cast<CFIndex>(text.size())));
    const auto built = host.Take(CFString2RBString(string.Get()));
    const auto utf8 = fuzz::InUTF8(text);
    const std::string upToZero = utf8.value_or("").substr(0, utf8.value_or("").find('\0'));
    if (upToZero.empty())
        Require(!built);
    else
        Require(built == HostText{upToZero, kCFStringEncodingUTF8});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    fuzz::Input input(bytes, size);
    const double version = input.Choose(kVersions);
    const auto what = input.Take<uint8_t>();
    const auto before = sim::macos::ledger::LiveCount();
    SmallHost host(version);
    host.keepsCalls = false;
    if (what % 2)
        CheckBytes(host, input, version);
    else
        CheckString(host, input);
    Require(host.Alive() == 0);
    Require(host.raised.empty());
    Require(sim::macos::ledger::LiveCount() == before);
    return 0;
}
