// A query as it was understood: comparisons of one attribute each, joined by "and" and "or".
#pragma once

#include "simulator/macos/CoreServices/metadata/expression/number.h"
#include "simulator/macos/CoreServices/metadata/expression/text_pattern.h"
#include "simulator/macos/CoreServices/metadata/expression/time_function.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace sim::macos::expression {

/// A quoted text. One that spells a number also compares with numbers, as callers who quote everything rely on.
struct TextOperand {
    TextPattern pattern;
    std::optional<Number> number;
};

using Operand = std::variant<TextOperand, Number, TimeFunction>;

enum class Relation { kEqual, kLess, kLessOrEqual, kGreater, kGreaterOrEqual };

/// attribute == operand, and its kin. Not equal is equal, negated: an item without the attribute is not equal to
/// anything.
struct Comparison {
    std::string attribute;
    Relation relation = Relation::kEqual;
    bool negated = false;
    Operand operand;
};

/// attribute == "*" and attribute != "*".
struct Presence {
    std::string attribute;
    bool negated = false;
};

/// InRange(attribute, low, high), both bounds included.
struct Range {
    std::string attribute;
    Operand low;
    Operand high;
};

struct Node;

struct Junction {
    bool all = true; // and; otherwise or
    std::vector<Node> parts;
};

struct Node {
    std::variant<Comparison, Presence, Range, Junction> content;
};

} // namespace sim::macos::expression
