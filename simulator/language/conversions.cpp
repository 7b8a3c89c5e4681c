#include "simulator/language/conversions.h"

#include "simulator/host/ground/text.h"
#include "simulator/host/runtime/runtime.h"

#include <cmath>
#include <limits>

namespace sim::language {

namespace {

bool IsNumber(const host::Value &value) {
    return value.Is<int32_t>() || value.Is<uint32_t>() || value.Is<int64_t>() || value.Is<float>() ||
           value.Is<double>();
}

[[noreturn]] void RaiseMismatch(Execution &execution, const host::Value &value, const Type &type,
                                const Location &where) {
    execution.Raise("TypeMismatchException", value.Describe() + " is no " + type.Name(), where);
}

/// Fractions are cut off, and what is too large for the type wraps as the machine's numbers do.
int64_t WholeNumber(const host::Value &value) { return host::ToInteger(value); }

host::Value ObjectOf(Execution &execution, const host::Value &value, const Type &type, const Location &where) {
    const host::Object object = value.As<host::Object>();
    const ClassSymbol *itsClass = execution.ClassOf(object);
    if (!itsClass)
        RaiseMismatch(execution, value, type, where);
    if (type.itsClass && !itsClass->IsA(*type.itsClass))
        execution.Raise("IllegalCastException", itsClass->name + " is no " + type.itsClass->name, where);
    return value;
}

host::Value ArrayOf(Execution &execution, const host::Value &value, const Type &type, const Location &where) {
    const host::Object object = value.Is<host::Object>() ? value.As<host::Object>() : host::Object();
    const auto *array = dynamic_cast<const host::ArrayEntity *>(object.Get());
    if (!array || !host::EqualIgnoringCase(array->TypeName(), HostElementName(type.Element())))
        RaiseMismatch(execution, value, type, where);
    return value;
}

} // namespace

host::Value NumberAs(const host::Value &value, Kind kind) {
    switch (kind) {
    case Kind::kInteger:
        return static_cast<int32_t>(WholeNumber(value));
    case Kind::kUInt32:
        return static_cast<uint32_t>(WholeNumber(value));
    case Kind::kInt64:
        return WholeNumber(value);
    case Kind::kSingle:
        return static_cast<float>(host::ToDouble(value));
    default:
        return host::ToDouble(value);
    }
}

host::Value Converted(Execution &execution, const host::Value &value, const Type &type, const Location &where) {
    if (type.kind == Kind::kVariant && !type.isArray)
        return value;
    if (value.IsNil())
        return DefaultOf(type);
    if (type.isArray)
        return ArrayOf(execution, value, type, where);
    if (type.kind == Kind::kObject && value.Is<host::Object>())
        return ObjectOf(execution, value, type, where);
    if (type.IsNumber() && (IsNumber(value) || value.Is<bool>() || value.Is<std::string>()))
        return NumberAs(value, type.kind);
    if (type.kind == Kind::kBoolean && (value.Is<bool>() || IsNumber(value)))
        return host::ToInteger(value) != 0;
    if (type.kind == Kind::kColor && value.Is<host::Color>())
        return value;
    if (type.kind == Kind::kString)
        if (const std::optional<host::Text> text = host::ToText(value))
            return host::ToUTF8(*text);
    RaiseMismatch(execution, value, type, where);
}

host::Value Tidied(host::Value value, const Type &type) {
    if (value.IsNil())
        return DefaultOf(type);
    if (type.Is(Kind::kString))
        return value.As<std::string>();
    return value;
}

} // namespace sim::language
