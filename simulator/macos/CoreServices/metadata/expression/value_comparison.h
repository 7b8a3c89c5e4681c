// Comparing the value that a file has with the value that a query names.
#pragma once

#include "simulator/macos/CoreServices/metadata/expression/syntax_tree.h"
#include "simulator/macos/CoreServices/metadata/items/attribute_source.h"

#include <CoreFoundation/CoreFoundation.h>

namespace sim::macos::expression {

/// The value of one attribute for as long as it is looked at. kMDItemPath can be read but not searched, so it never has
/// one.
class AttributeValue {
public:
    AttributeValue(const AttributeSource &attributes, const std::string &name)
        : value_(name == "kMDItemPath" ? nullptr : attributes.CopyForSearch(name)) {}
    ~AttributeValue() {
        if (value_)
            CFRelease(value_);
    }
    AttributeValue(const AttributeValue &) = delete;
    AttributeValue &operator=(const AttributeValue &) = delete;

    bool Exists() const { return value_ != nullptr; }

    /// Whether the predicate holds for the value, or for one of its elements when it has several.
    template <typename Predicate> bool Any(Predicate predicate) const {
        if (!value_)
            return false;
        if (CFGetTypeID(value_) != CFArrayGetTypeID())
            return predicate(value_);
        const auto array = static_cast<CFArrayRef>(value_);
        const CFIndex count = CFArrayGetCount(array);
        for (CFIndex index = 0; index < count; ++index) {
            if (predicate(CFArrayGetValueAtIndex(array, index)))
                return true;
        }
        return false;
    }

private:
    CFTypeRef value_;
};

/// Whether a single value stands in the relation to the operand. A value of another kind never does.
bool ElementFits(CFTypeRef element, Relation relation, const Operand &operand, CFAbsoluteTime now);

} // namespace sim::macos::expression
