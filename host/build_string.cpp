#include "host/build_string.h"

#include <algorithm>
#include <cstring>

#include "host/exceptions.h"
#include "host/owned.h"
#include "host/strings.h"
#include "host/zeroed_buffer.h"

namespace {

bool IsASCII(const UInt8 *bytes, int32_t length) {
    return std::all_of(bytes, bytes + length, [](UInt8 byte) { return byte < 0x80; });
}

OwnedString BuildTagged(const void *bytes, int32_t length, CFStringEncoding encoding) {
    auto string = AdoptHost(REALBuildString(bytes, length));
    if (string)
        REALSetStringEncoding(string.Get(), encoding);
    return string;
}

/// The string in the plugin's working encoding, or null. The intermediate string is given up before the caller sees the
/// result, so that an exception of the host on the way loses neither.
OwnedString ConvertToUTF8(OwnedString string) {
    auto converted = AdoptHost(string ? REALConvertString(string.Get(), kCFStringEncodingUTF8) : nullptr);
    Release(string);
    return converted;
}

OwnedString BuildUTF16(const void *bytes, int32_t length) {
    if (HostBuildsWithEncoding())
        return ConvertToUTF8(AdoptHost(REALBuildStringWithEncoding(bytes, length, kCFStringEncodingUnicode)));
    return ConvertToUTF8(BuildTagged(bytes, length, kCFStringEncodingUnicode));
}

bool IsSurrogate(uint32_t codePoint) { return (codePoint & 0xFFFFF800) == 0xD800; }

/// Writes the UTF-16 form of UTF-32 text and gives the number of units. Surrogates are dropped, points beyond the last
/// become U+FFFD.
int32_t ConvertUTF32(const UInt8 *bytes, int32_t codePoints, UniChar *units) {
    UniChar *end = units;
    for (int32_t i = 0; i < codePoints; i++) {
        uint32_t codePoint;
        std::memcpy(&codePoint, bytes + i * 4, 4);
        if (IsSurrogate(codePoint))
            continue;
        if (codePoint < 0x10000) {
            *end++ = static_cast<UniChar>(codePoint);
        } else if (codePoint >= 0x110000) {
            *end++ = 0xFFFD;
        } else {
            *end++ = static_cast<UniChar>(0xD800 + ((codePoint - 0x10000) >> 10));
            *end++ = static_cast<UniChar>(0xDC00 | ((codePoint - 0x10000) & 0x03FF));
        }
    }
    *end = 0;
    return static_cast<int32_t>(end - units);
}

OwnedString BuildUTF32OnOldHost(const UInt8 *bytes, int32_t length) {
    constexpr int32_t kShortLength = 800;
    const int32_t codePoints = length / 4;
    // Every code point may need two units, and a terminator follows.
    constexpr auto unitsFor = [](int64_t points) { return points * 2 + 1; };
    const auto build = [&](UniChar *units) {
        return BuildUTF16(units, ConvertUTF32(bytes, codePoints, units) * static_cast<int32_t>(sizeof(UniChar)));
    };
    if (length < kShortLength) {
        UniChar units[unitsFor(kShortLength / 4)];
        return build(units);
    }
    const int64_t size = unitsFor(codePoints) * static_cast<int64_t>(sizeof(UniChar));
    static_assert(unitsFor(INT32_MAX / 4) * sizeof(UniChar) <= INT32_MAX, "the longest text has a buffer");
    const auto units = NewZeroedBuffer<UniChar>(static_cast<size_t>(size));
    return units ? build(units.get()) : OwnedString();
}

OwnedString BuildUTF32(const UInt8 *bytes, int32_t length) {
    if (!HostConvertsUTF32())
        return BuildUTF32OnOldHost(bytes, length);
    return ConvertToUTF8(AdoptHost(REALBuildStringWithEncoding(bytes, length, kCFStringEncodingUTF32)));
}

OwnedString Build(const UInt8 *bytes, int32_t length, CFStringEncoding encoding) {
    switch (encoding) {
    case kCFStringEncodingUnicode:
        return BuildUTF16(bytes, length);
    case kCFStringEncodingUTF32:
        return BuildUTF32(bytes, length);
    case kCFStringEncodingMacRoman:
    case kCFStringEncodingWindowsLatin1:
    case kHostUnknownEncoding:
        return BuildTagged(bytes, length, IsASCII(bytes, length) ? kCFStringEncodingASCII : encoding);
    default:
        return BuildTagged(bytes, length, encoding);
    }
}

} // namespace

REALstringStruct *REALBuildUnicodeString(const void *bytes, int64_t length, CFStringEncoding encoding) {
    if (!bytes || length < 1 || length > INT32_MAX)
        return nullptr;
    try {
        return Build(static_cast<const UInt8 *>(bytes), static_cast<int32_t>(length), encoding).Give();
    } catch (...) {
        RaiseCaughtException();
        return nullptr;
    }
}

REALstringStruct *REALBuildUnicodeStringUTF16(const void *bytes, int64_t length) {
    // Nothing left of a text is still a text: unlike above, the host is asked to build it.
    if (!bytes || length < 0 || length > INT32_MAX)
        return nullptr;
    return BuildUTF16(bytes, static_cast<int32_t>(length)).Give();
}

OwnedString ASCIIText(const char *text) {
    return AdoptHost(REALBuildUnicodeString(text, static_cast<int64_t>(std::strlen(text)), kCFStringEncodingASCII));
}
