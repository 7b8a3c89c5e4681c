// Walking a query over the attributes of one file.
#include "simulator/macos/CoreServices/metadata/expression/expression.h"

#include "simulator/macos/CoreServices/metadata/expression/parser.h"
#include "simulator/macos/CoreServices/metadata/expression/value_comparison.h"

#include <algorithm>

namespace sim::macos::expression {

namespace {

class Evaluator {
public:
    Evaluator(const AttributeSource &attributes, CFAbsoluteTime now) : attributes_(attributes), now_(now) {}

    bool Holds(const Node &node) const {
        return std::visit([this](const auto &content) { return (*this)(content); }, node.content);
    }

    bool operator()(const Comparison &comparison) const {
        const AttributeValue value(attributes_, comparison.attribute);
        return value.Any([&](CFTypeRef element) {
            return ElementFits(element, comparison.relation, comparison.operand, now_);
        }) != comparison.negated;
    }

    bool operator()(const Presence &presence) const {
        return AttributeValue(attributes_, presence.attribute).Exists() != presence.negated;
    }

    bool operator()(const Range &range) const {
        const AttributeValue value(attributes_, range.attribute);
        return value.Any([&](CFTypeRef element) {
            return ElementFits(element, Relation::kGreaterOrEqual, range.low, now_) &&
                   ElementFits(element, Relation::kLessOrEqual, range.high, now_);
        });
    }

    bool operator()(const Junction &junction) const {
        const auto holds = [this](const Node &part) { return Holds(part); };
        return junction.all ? std::all_of(junction.parts.begin(), junction.parts.end(), holds)
                            : std::any_of(junction.parts.begin(), junction.parts.end(), holds);
    }

private:
    const AttributeSource &attributes_;
    CFAbsoluteTime now_;
};

} // namespace

std::shared_ptr<const Expression> Expression::Parse(std::u16string_view text) {
    auto root = expression::Parse(text);
    if (!root)
        return nullptr;
    return std::shared_ptr<const Expression>(new Expression(std::move(*root)));
}

bool Expression::Matches(const AttributeSource &attributes, CFAbsoluteTime now) const {
    return Evaluator(attributes, now).Holds(root_);
}

} // namespace sim::macos::expression
