// Encodings of one byte for each character, and ASCII with escapes for everything else.
#pragma once

#include <CoreFoundation/CFString.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace sim::macos {

/// A table of the upper 128 characters; the lower ones are ASCII.
class OneByteEncoding {
public:
    static constexpr char16_t kNone = 0xFFFD;
    using UpperHalf = std::array<char16_t, 128>;

    explicit constexpr OneByteEncoding(const UpperHalf &upper) : upper_(upper) {}

    /// Null when the number names no such encoding.
    static const OneByteEncoding *Find(CFStringEncoding encoding);

    /// Nothing for a byte that stands for no character.
    std::optional<char16_t> ToUnicode(unsigned char byte) const;
    std::optional<unsigned char> FromUnicode(char16_t character) const;

private:
    UpperHalf upper_;
};

/// ASCII in which \ooo (octal, to U+00FF), \uxxxx and \\ stand for what ASCII lacks and for the backslash. Nothing for
/// bytes above 127 and for other escapes.
std::optional<std::u16string> DecodeNonLossyAscii(std::string_view bytes);
std::string EncodeNonLossyAscii(std::u16string_view text);

} // namespace sim::macos
