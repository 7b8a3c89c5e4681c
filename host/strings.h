// Strings between the host and Core Foundation, and host strings built from bytes, which hosts of different ages do in
// different ways. Encodings are Core Foundation's numbers on both sides. A conversion that fails gives null and raises
// nothing, unless it fails because the host throws a C++ exception while it builds a string; what null means is for the
// caller to say.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/owned.h"

/// The host's own mark for text of unknown encoding. The platform's constant of a similar name is another number.
constexpr CFStringEncoding kHostUnknownEncoding = 0xFFFF;

/// +1; null for a null string or for bytes that Core Foundation rejects.
[[nodiscard]] CFStringRef RBString2CFString(REALstringStruct *string);

/// The string, or the constant empty one for a null string or bytes that Core Foundation rejects.
inline OwnedCF<CFStringRef> TextOrEmpty(REALstringStruct *string) {
    auto text = AdoptCF(RBString2CFString(string));
    return text ? std::move(text) : HoldCF(CFSTR(""));
}

/// +1; null for a null or empty string, one without a UTF-8 form, or a host that cannot build it. C++ exceptions of the
/// host come out as host exceptions.
[[nodiscard]] REALstringStruct *CFString2RBString(CFStringRef string);

/// +1; null for no bytes, a length outside 1 to 0x7FFFFFFF, or a host that cannot build it. C++ exceptions of the host
/// come out as host exceptions.
[[nodiscard]] REALstringStruct *REALBuildUnicodeString(const void *bytes, int64_t length, CFStringEncoding encoding);

/// A host string with the UTF-8 form of UTF-16 text in host byte order, +1, or null. The length is in bytes, 0 to
/// 0x7FFFFFFF. C++ exceptions of the host pass through.
[[nodiscard]] REALstringStruct *REALBuildUnicodeStringUTF16(const void *bytes, int64_t length);

/// A host string with a text of 7-bit characters, or null for an empty text and a host that cannot build it.
OwnedString ASCIIText(const char *text);
