// From the text of a query to its syntax tree.
//
//   query       = conjunction { "||" conjunction }
//   conjunction = term { "&&" term }
//   term        = "(" query ")" | comparison | range
//   comparison  = name ( "==" | "=" | "!=" ) [ "[" modifiers "]" ] value | name ( "<" | "<=" | ">" | ">=" ) value
//   range       = ( "InRange" | "inRange" ) "(" name "," value "," value ")"
//   value       = quoted text [ modifiers ] | number | $time…
//
// Order is asked of numbers and dates only; modifiers belong to text.
#pragma once

#include "simulator/macos/CoreServices/metadata/expression/syntax_tree.h"

#include <optional>
#include <string_view>

namespace sim::macos::expression {

/// Deeper nesting of parentheses than this is malformed. It keeps parsing, evaluating and destroying a query within a
/// small stack.
inline constexpr int kDeepestNesting = 200;

/// The first place where a text stops being a query, in its units, and what would have fitted there.
struct Mistake {
    std::size_t at = 0;
    std::string_view expected;
};

/// Nothing for an empty or malformed query; then the mistake is noted, where somebody wants to know.
std::optional<Node> Parse(std::u16string_view text, Mistake *mistake = nullptr);

} // namespace sim::macos::expression
