// A query expression: which files a query is looking for. This is the published language in full: comparisons, ranges,
// wildcards, modifiers, $time, "and", "or" and parentheses. What the language cannot say is refused, never guessed at.
#pragma once

#include "simulator/macos/CoreServices/metadata/expression/syntax_tree.h"
#include "simulator/macos/CoreServices/metadata/items/attribute_source.h"

#include <memory>
#include <string_view>

namespace sim::macos::expression {

class Expression {
public:
    /// Null for an empty or malformed expression.
    static std::shared_ptr<const Expression> Parse(std::u16string_view text);

    /// Whether a file with these attributes is one of those looked for. The moment is what $time counts from.
    bool Matches(const AttributeSource &attributes, CFAbsoluteTime now) const;

private:
    explicit Expression(Node root) : root_(std::move(root)) {}

    Node root_;
};

} // namespace sim::macos::expression
