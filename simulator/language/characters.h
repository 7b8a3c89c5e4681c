// Text by characters instead of bytes, and without regard to case. As in the host language, "é" in two parts is two
// characters, and texts that differ in case only are equal.
#pragma once

#include <string>
#include <string_view>

namespace sim::language {

/// Bytes that are no UTF-8 become U+FFFD.
std::u32string CharactersOf(std::string_view utf8);
std::string TextOf(std::u32string_view characters);

/// Each character in the case that all cases of it have in common.
std::u32string Folded(std::u32string characters);
std::u32string Upper(std::u32string characters);
std::u32string Lower(std::u32string characters);
bool IsBlank(char32_t character);

/// Less than, equal to or greater than 0, without regard to case.
int Compare(std::string_view left, std::string_view right);

} // namespace sim::language
