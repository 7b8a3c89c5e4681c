// Where words begin and end, for comparisons that match whole words.
#pragma once

#include <string_view>
#include <vector>

namespace sim::macos::expression {

/// One entry per position of the text, from before its first unit to behind its last. "MyWindowClass" is three words,
/// "NSWindow" one, "paris-france.jpg" three and a dash and a dot.
std::vector<bool> WordBoundaries(std::u16string_view text);

} // namespace sim::macos::expression
