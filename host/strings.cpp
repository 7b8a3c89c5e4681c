#include "host/strings.h"

#include <algorithm>
#include <cstring>

#include "host/exceptions.h"
#include "host/host_function.h"
#include "host/zeroed_buffer.h"

// Host strings are read.

namespace {

/// The part of an old host's string that the plugin knows.
struct OldString {
    uint32_t unknown1;
    /// A length byte, then the text.
    const UInt8 *storage;
    uint32_t unknown2;
    int32_t length;
};

constinit HostFunction<int32_t(REALstringStruct *)> LenB{"LenB( s as string ) as integer"};

/// The bytes of a host string, held by a reference while they are read if the host can add one.
struct HostText {
    const UInt8 *bytes;
    CFIndex length;
    OwnedString hold;

    /// A host that lies about a string (no bytes, but a length) must not make anyone read them.
    bool IsReadable() const { return bytes ? length >= 0 : length == 0; }
};

HostText ReadStringInPlace(REALstringStruct *string) {
    if (HostHidesLayouts()) {
        const CFIndex length = LenB(string);
        const UInt8 *bytes = REALGetStringContents(string);
        return {bytes, length, Hold(string)};
    }
    auto hold = Hold(string);
    const auto *old = reinterpret_cast<const OldString *>(string);
    return {old->storage ? old->storage + 1 : nullptr, old->length, std::move(hold)};
}

CFStringRef CFStringFromBytes(REALstringStruct *string, CFStringEncoding encoding) {
    const HostText text = ReadStringInPlace(string);
    if (!text.IsReadable())
        return nullptr;
    if (encoding == kCFStringEncodingUnicode)
        return CFStringCreateWithCharacters(kCFAllocatorDefault, reinterpret_cast<const UniChar *>(text.bytes),
                                            text.length / 2);
    return CFStringCreateWithBytes(kCFAllocatorDefault, text.bytes, text.length, encoding, true);
}

} // namespace

CFStringRef RBString2CFString(REALstringStruct *string) {
    if (!string)
        return nullptr;

    const CFStringEncoding encoding = REALGetStringEncoding(string);
    if (encoding == kHostUnknownEncoding)
        return CFStringFromBytes(string, kCFStringEncodingMacRoman);

    if (HostGivesCFStrings())
        if (CFStringRef converted = REALGetStringCFString(string, 0))
            return converted;
    // Deliberate: hosts from 2012 on are asked a second time, through a cell of its own; for older ones it is the
    // first.
    static constinit EntryPoint<CFStringRef(REALstringStruct *, int32_t)> askOnAnyHost{"REALGetStringCFString"};
    if (CFStringRef converted = askOnAnyHost(string, 0))
        return converted;

    return CFStringFromBytes(string, encoding);
}

// Host strings are built.

namespace {

bool IsASCII(const UInt8 *bytes, int32_t length) {
    return std::all_of(bytes, bytes + length, [](UInt8 byte) { return byte < 0x80; });
}

OwnedString BuildTaggedString(const void *bytes, int32_t length, CFStringEncoding encoding) {
    auto string = AdoptHost(REALBuildString(bytes, length));
    if (string)
        REALSetStringEncoding(string.Get(), encoding);
    return string;
}

/// The string in the plugin's working encoding, or null. The intermediate string is given up before the caller sees the
/// result, so that an exception of the host on the way loses neither.
OwnedString BuildUTF8(OwnedString string) {
    auto converted = AdoptHost(string ? REALConvertString(string.Get(), kCFStringEncodingUTF8) : nullptr);
    Release(string);
    return converted;
}

OwnedString BuildUTF16(const void *bytes, int32_t length) {
    if (HostBuildsWithEncoding())
        return BuildUTF8(AdoptHost(REALBuildStringWithEncoding(bytes, length, kCFStringEncodingUnicode)));
    return BuildUTF8(BuildTaggedString(bytes, length, kCFStringEncodingUnicode));
}

bool IsSurrogate(uint32_t codePoint) { return (codePoint & 0xFFFFF800) == 0xD800; }

/// Writes the UTF-16 form of UTF-32 text and gives the number of units. Surrogates are dropped, points beyond the last
/// become U+FFFD.
int32_t BuildUTF16Units(const UInt8 *bytes, int32_t codePoints, UniChar *units) {
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
        return BuildUTF16(units, BuildUTF16Units(bytes, codePoints, units) * static_cast<int32_t>(sizeof(UniChar)));
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
    return BuildUTF8(AdoptHost(REALBuildStringWithEncoding(bytes, length, kCFStringEncodingUTF32)));
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
        return BuildTaggedString(bytes, length, IsASCII(bytes, length) ? kCFStringEncodingASCII : encoding);
    default:
        return BuildTaggedString(bytes, length, encoding);
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

namespace {

REALstringStruct *CFString2RBStringByWayOf(CFStringRef string, char *buffer, CFIndex size) {
    if (!CFStringGetCString(string, buffer, size, kCFStringEncodingUTF8))
        return nullptr;
    return REALBuildUnicodeString(buffer, static_cast<int64_t>(std::strlen(buffer)), kCFStringEncodingUTF8);
}

} // namespace

REALstringStruct *CFString2RBString(CFStringRef string) {
    constexpr CFIndex kShortLength = 99;
    // More than UTF-8 ever takes.
    constexpr CFIndex kBytesPerUnit = 6;

    const CFIndex length = string ? CFStringGetLength(string) : 0;
    if (length <= 0)
        return nullptr;
    if (length <= kShortLength) {
        // One byte more than the framework is told of, so that a zero always ends the text.
        constexpr CFIndex kSize = 600;
        char buffer[kSize + 1] = {};
        return CFString2RBStringByWayOf(string, buffer, kSize);
    }
    if (length > INT32_MAX / kBytesPerUnit)
        return nullptr;
    const CFIndex size = length * kBytesPerUnit;
    const auto buffer = NewZeroedBuffer<char>(static_cast<size_t>(size));
    return buffer ? CFString2RBStringByWayOf(string, buffer.get(), size) : nullptr;
}
