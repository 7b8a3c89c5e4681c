// Text on a terminal: how many columns it takes, and how to make it fit. Counts what readers see as one character, so a
// decomposed é takes one column and a wide character two.
#pragma once

#include <string>
#include <string_view>

namespace sim::cli {

/// Columns that the UTF-8 text takes.
size_t WidthOf(std::string_view text);

enum class Cut { kEnd, kMiddle };

/// The text, shortened with an ellipsis where it takes more than `width` columns.
std::string Fitted(std::string_view text, size_t width, Cut cut = Cut::kEnd);

/// The text with blanks behind it, or before it, up to `width` columns.
std::string PaddedRight(std::string text, size_t width);
std::string PaddedLeft(const std::string &text, size_t width);

/// The text on one line, harmless to a terminal: line ends, tabs, escapes and marks that turn the direction of writing
/// are spelled out, as are bytes that are no UTF-8.
std::string Printable(std::string_view text);

} // namespace sim::cli
