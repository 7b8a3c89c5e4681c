// Reading: host strings to Core Foundation, and Core Foundation strings to the bytes from which build_string.cpp makes
// host strings.
#include "host/strings.h"

#include <cstring>

#include "host/build_string.h"
#include "host/host_function.h"
#include "host/owned.h"
#include "host/zeroed_buffer.h"

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
    bool IsReadable() const { return length == 0 || (length > 0 && bytes); }
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

REALstringStruct *CFString2RBStringByWayOf(CFStringRef string, char *buffer, CFIndex size) {
    if (!CFStringGetCString(string, buffer, size, kCFStringEncodingUTF8))
        return nullptr;
    return REALBuildUnicodeString(buffer, static_cast<int64_t>(std::strlen(buffer)), kCFStringEncodingUTF8);
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
