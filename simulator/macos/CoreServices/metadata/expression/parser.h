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

/// Nothing for an empty or malformed query.
std::optional<Node> Parse(std::u16string_view text);

} // namespace sim::macos::expression
