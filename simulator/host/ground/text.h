// Conversion of text between the encodings that a host knows by number. UTF-16 and UTF-32 are in the byte order of the
// machine. The work is ICU's.
#pragma once

#include "simulator/host/ground/options.h"

namespace sim::host {

/// The same characters in another encoding. Bytes that are no text in the source encoding become U+FFFD, and characters
/// that the target lacks become its substitute. An unknown source or target encoding counts as MacRoman; the result
/// then still bears the number that was asked for.
Text Convert(const Text &text, uint32_t encoding);

/// `text` as UTF-8; bytes that are no text in its encoding become U+FFFD. Text of unknown encoding is read as MacRoman.
std::string ToUTF8(const Text &text);

/// Between UTF-8 and UTF-16 units; ill-formed parts become U+FFFD.
std::u16string ToUTF16(std::string_view utf8);
std::string ToUTF8(std::u16string_view utf16);

/// Texts with the same characters, whatever their encodings.
bool SameCharacters(const Text &left, const Text &right);

/// For names of classes, types and methods, which ignore the case of A to Z.
bool EqualIgnoringCase(std::string_view left, std::string_view right);
std::string LowerCase(std::string_view text);

} // namespace sim::host
