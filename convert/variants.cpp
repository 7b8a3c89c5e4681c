#include "convert/variants.h"

#include "host/host_function.h"

namespace {

/// The conversion service's answer, or the named property's, or 0.
template <class Value>
Value ReadScalar(REALobjectStruct *variant, EntryPoint<Value(REALobjectStruct *)> &convert,
                 PropertyGetter<Value> &getProperty, const char *property) {
    if (convert)
        return convert(variant);
    Value value{};
    getProperty(variant, property, &value);
    return value;
}

} // namespace

int32_t GetVariantType(REALobjectStruct *variant) {
    static constinit HostFunction<int32_t(REALobjectStruct *)> p{"VarType(value As Variant) As Int32"};
    if (p)
        return p(variant);
    int32_t type = kVariantNil;
    return REALGetPropValueInteger(variant, "Type", &type) ? type : int32_t{kVariantNil};
}

REALstringStruct *GetVariantString(REALobjectStruct *variant) {
    return ReadScalar(variant, VariantToString, REALGetPropValueString, "StringValue");
}

int32_t GetVariantInt32(REALobjectStruct *variant) {
    return ReadScalar(variant, VariantToInt32, REALGetPropValueInt32, "Int32Value");
}

int64_t GetVariantInt64(REALobjectStruct *variant) {
    return ReadScalar(variant, VariantToInt64, REALGetPropValueInt64, "LongValue");
}

float GetVariantSingle(REALobjectStruct *variant) {
    return ReadScalar(variant, VariantToSingle, REALGetPropValueSingle, "SingleValue");
}

double GetVariantDouble(REALobjectStruct *variant) {
    return ReadScalar(variant, VariantToDouble, REALGetPropValueDouble, "DoubleValue");
}
