// A boxed scalar or text: what a host makes of a value when a Variant is asked for. Conversions are lenient, as a
// Variant's are: text gives the number that it begins with, a boolean 1 or 0.
#pragma once

#include "simulator/host/entities/heap.h"
#include "simulator/host/entities/value.h"

namespace sim::host {

class VariantEntity : public Entity {
public:
    static constexpr size_t kHandleSize = 16;

    VariantEntity(int32_t typeCode, Value held) : typeCode_(typeCode), held_(std::move(held)) {}

    std::string ClassName() const override { return "variant"; }
    int32_t TypeCode() const override { return typeCode_; }

    const Value &Held() const { return held_; }
    /// Whether the code is the one that Box gives such a value.
    bool IsPlain() const;

private:
    int32_t typeCode_;
    Value held_;
};

/// The code of a scalar or text, 9 for objects is the object's own affair, 0 for nil.
int32_t ScalarTypeCode(const Value &value);

// What a Variant that holds `value` converts to.
int64_t ToInteger(const Value &value);
double ToDouble(const Value &value);
/// Nothing for nil and for objects.
std::optional<Text> ToText(const Value &value);

} // namespace sim::host
