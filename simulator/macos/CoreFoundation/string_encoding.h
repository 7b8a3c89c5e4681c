// Bytes to text and back, for the encodings that the Unicode library has a converter for. Other numbers stand for no
// encoding.
#pragma once

#include <CoreFoundation/CFString.h>

#include <optional>
#include <string>
#include <string_view>

namespace sim::macos {

/// The text of the bytes. A byte-order mark is consumed, and UTF-16 and UTF-32 are big-endian without one; but UTF-16
/// that is no external representation is in the order of this machine, and a mark is text in it. Bytes at the end that
/// do not fill a UTF-16 or UTF-32 unit are ignored. Nothing for malformed bytes and for a number that is no encoding;
/// text in UTF-16 may have lone surrogates.
std::optional<std::u16string> Decode(std::string_view bytes, CFStringEncoding encoding, bool isExternal);

/// The bytes of the text in an encoding whose units are bytes. Nothing when a character cannot be written; stops for
/// UTF-16 and UTF-32, whose units are larger.
std::optional<std::string> Encode(std::u16string_view text, CFStringEncoding encoding);
/// With a question mark for each character that cannot be written.
std::string EncodeLossy(std::u16string_view text, CFStringEncoding encoding);

} // namespace sim::macos
