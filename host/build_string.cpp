// Building host strings from bytes, and the differences between host ages in doing so. The working encoding of the
// plugin's strings is UTF-8.
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
    auto string = OwnedString::Adopt(REALBuildString(bytes, length));
    if (string)
        REALSetStringEncoding(string.Get(), encoding);
    return string;
}

/// +1, or null. The intermediate string is given up before the caller sees the result, so that an exception of the host
/// on the way loses neither.
REALstringStruct *ConvertToUTF8(OwnedString string) {
    auto converted = OwnedString::Adopt(string ? REALConvertString(string.Get(), kCFStringEncodingUTF8) : nullptr);
    Release(string);
    return converted.Give();
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

REALstringStruct *BuildUTF32OnOldHost(const UInt8 *bytes, int32_t length) {
    constexpr int32_t kShortLength = 800;
    const int32_t codePoints = length / 4;
    const auto build = [&](UniChar *units) {
        const int32_t count = ConvertUTF32(bytes, codePoints, units);
        return REALBuildUnicodeStringUTF16(units, int64_t{count} * 2);
    };
    if (length < kShortLength) {
        UniChar units[kShortLength / 4 * 2 + 1];
        return build(units);
    }
    // Every code point may need two units, and a terminator follows.
    const int64_t size = (int64_t{codePoints} * 2 + 1) * static_cast<int64_t>(sizeof(UniChar));
    if (size > INT32_MAX)
        return nullptr;
    const auto units = NewZeroedBuffer<UniChar>(static_cast<size_t>(size));
    return units ? build(units.get()) : nullptr;
}

REALstringStruct *BuildUTF32(const UInt8 *bytes, int32_t length) {
    if (!HostConvertsUTF32())
        return BuildUTF32OnOldHost(bytes, length);
    return ConvertToUTF8(OwnedString::Adopt(REALBuildStringWithEncoding(bytes, length, kCFStringEncodingUTF32)));
}

REALstringStruct *Build(const UInt8 *bytes, int32_t length, CFStringEncoding encoding) {
    switch (encoding) {
    case kCFStringEncodingUnicode:
        return REALBuildUnicodeStringUTF16(bytes, length);
    case kCFStringEncodingUTF32:
        return BuildUTF32(bytes, length);
    case kCFStringEncodingMacRoman:
    case kCFStringEncodingWindowsLatin1:
    case kHostUnknownEncoding:
        return BuildTagged(bytes, length, IsASCII(bytes, length) ? kCFStringEncodingASCII : encoding).Give();
    default:
        return BuildTagged(bytes, length, encoding).Give();
    }
}

} // namespace

REALstringStruct *REALBuildUnicodeString(const void *bytes, int64_t length, CFStringEncoding encoding) {
    if (!bytes || length < 1 || length > INT32_MAX)
        return nullptr;
    try {
        return Build(static_cast<const UInt8 *>(bytes), static_cast<int32_t>(length), encoding);
    } catch (...) {
        RaiseCaughtException();
        return nullptr;
    }
}

REALstringStruct *REALBuildUnicodeStringUTF16(const void *bytes, int64_t length) {
    // Nothing left of a text is still a text: unlike above, the host is asked to build it.
    if (!bytes || length < 0 || length > INT32_MAX)
        return nullptr;
    const auto byteCount = static_cast<int32_t>(length);
    if (HostSpeaksCFStrings())
        return ConvertToUTF8(
            OwnedString::Adopt(REALBuildStringWithEncoding(bytes, byteCount, kCFStringEncodingUnicode)));
    return ConvertToUTF8(BuildTagged(bytes, byteCount, kCFStringEncodingUnicode));
}
