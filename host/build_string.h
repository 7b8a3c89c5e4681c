// Building host strings from bytes, and the differences between host ages in doing so. C++ exceptions of the host come
// out as host exceptions.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/owned.h"

/// +1; null for no bytes, a length outside 1 to 0x7FFFFFFF, or a host that cannot build it.
[[nodiscard]] REALstringStruct *REALBuildUnicodeString(const void *bytes, int64_t length, CFStringEncoding encoding);

/// A host string with the UTF-8 form of UTF-16 text in host byte order, +1, or null. The length is in bytes, 0 to
/// 0x7FFFFFFF. C++ exceptions of the host pass through.
[[nodiscard]] REALstringStruct *REALBuildUnicodeStringUTF16(const void *bytes, int64_t length);

/// A host string with a text of 7-bit characters, or null for an empty text and a host that cannot build it.
OwnedString ASCIIText(const char *text);
