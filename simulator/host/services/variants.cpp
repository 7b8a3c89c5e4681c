// Variants: making them of scalars and texts, their type code, and their conversions. A null variant is nil.
#include "simulator/host/runtime/runtime.h"
#include "simulator/host/services/table.h"

namespace sim::host {

namespace {

void *BoxOf(const Value &value) { return Runtime::Current().Box(value)->address; }

void *StringToVariant(const void *string) {
    auto *entity = Runtime::Current().heap.RequireOrNull<StringEntity>(string, "a string");
    return BoxOf(entity ? Value(entity->GetText()) : Value(""));
}

/// Only the low byte of the argument is meant.
void *BooleanToVariant(uint32_t value) { return BoxOf((value & 0xFF) != 0); }
void *Int32ToVariant(int32_t value) { return BoxOf(value); }
void *Int64ToVariant(int64_t value) { return BoxOf(value); }
void *DoubleToVariant(double value) { return BoxOf(value); }

/// What a variant converts from: nothing for nil, for objects and for arrays.
Value HeldBy(const void *variant) {
    Runtime &runtime = Runtime::Current();
    if (!variant)
        return nullptr;
    auto *box = dynamic_cast<VariantEntity *>(&runtime.heap.At(variant, "a variant"));
    return box ? box->Held() : Value();
}

int32_t VarType(const void *variant) {
    return variant ? Runtime::Current().heap.At(variant, "a variant").TypeCode() : 0;
}

void *VariantToString(const void *variant) {
    std::optional<Text> text = ToText(HeldBy(variant));
    return text ? Runtime::Current().NewString(*text).address : nullptr;
}

int32_t VariantToInt32(const void *variant) { return static_cast<int32_t>(ToInteger(HeldBy(variant))); }
int64_t VariantToInt64(const void *variant) { return ToInteger(HeldBy(variant)); }
float VariantToSingle(const void *variant) { return static_cast<float>(ToDouble(HeldBy(variant))); }
double VariantToDouble(const void *variant) { return ToDouble(HeldBy(variant)); }

} // namespace

std::span<const ServiceRow> VariantServices() {
    static const ServiceRow rows[] = {
        Service<"StringToVariant", StringToVariant>(),
        Service<"BooleanToVariant", BooleanToVariant>(),
        Service<"IntegerToVariant", Int32ToVariant, Reach::kFirstName>(),
        Service<"Int32ToVariant", Int32ToVariant>(),
        Service<"Int64ToVariant", Int64ToVariant>(),
        Service<"DoubleToVariant", DoubleToVariant>(),
        Service<"VariantToString", VariantToString>(),
        Service<"VariantToInt32", VariantToInt32>(),
        Service<"VariantToInt64", VariantToInt64>(),
        Service<"VariantToSingle", VariantToSingle>(),
        Service<"VariantToDouble", VariantToDouble>(),
        Service<"VarType(value As Variant) As Int32", VarType, Reach::kGlobalMethod>(),
    };
    return rows;
}

} // namespace sim::host
