// Small cuts of plain text that the readers share.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sim::macos {

/// The parts between the separators, without blanks around them; empty parts are left out. The parts are views of the
/// text.
std::vector<std::string_view> Words(std::string_view text, char separator);

std::string_view WithoutBlanksAround(std::string_view text);

/// Only the letters of ASCII change.
std::string LowerCaseASCII(std::string_view text);

} // namespace sim::macos
