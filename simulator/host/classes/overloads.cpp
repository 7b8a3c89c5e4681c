#include "simulator/host/classes/overloads.h"

#include "simulator/host/classes/instance.h"
#include "simulator/host/entities/array_entity.h"
#include "simulator/host/entities/variant_entity.h"
#include "simulator/host/ground/text.h"

namespace sim::host {

namespace {

bool SameElementType(std::string_view left, std::string_view right) {
    auto plain = [](std::string_view name) {
        return EqualIgnoringCase(name, "int32") ? std::string_view("integer") : name;
    };
    return EqualIgnoringCase(plain(left), plain(right));
}

std::optional<int> ObjectDistance(Entity *entity, const Type &type) {
    auto *array = dynamic_cast<ArrayEntity *>(entity);
    if (type.isArray)
        return array && SameElementType(array->TypeName(), type.name) ? std::optional(0) : std::nullopt;
    if (type.kind == TypeKind::kVariant)
        return dynamic_cast<VariantEntity *>(entity) ? 0 : 5;
    auto *instance = dynamic_cast<Instance *>(entity);
    if (type.kind != TypeKind::kObject || !instance)
        return std::nullopt;
    int steps = 0;
    for (const Class *itsClass = &instance->GetClass(); itsClass; itsClass = itsClass->super, ++steps)
        if (EqualIgnoringCase(itsClass->name, type.name))
            return steps;
    return EqualIgnoringCase(type.name, "object") ? std::optional(steps) : std::nullopt;
}

std::optional<int> ScalarDistance(const Value &value, TypeKind kind) {
    switch (kind) {
    case TypeKind::kBoolean:
        return value.Is<bool>() ? std::optional(0) : std::nullopt;
    case TypeKind::kColor:
        return value.Is<Color>() ? std::optional(0) : std::nullopt;
    case TypeKind::kString:
        return value.Is<std::string>() ? std::optional(0) : std::nullopt;
    case TypeKind::kVariant:
        return 5;
    case TypeKind::kInt32:
        return value.Is<int32_t>() ? std::optional(0) : std::nullopt;
    case TypeKind::kUInt32:
        if (value.Is<int32_t>() && value.As<int32_t>() >= 0)
            return 1;
        return value.Is<uint32_t>() ? std::optional(0) : std::nullopt;
    case TypeKind::kInt64:
        if (value.Is<int32_t>() || value.Is<uint32_t>())
            return 1;
        return value.Is<int64_t>() ? std::optional(0) : std::nullopt;
    case TypeKind::kSingle:
        return value.Is<float>() ? std::optional(0) : std::nullopt;
    case TypeKind::kDouble:
        if (value.Is<int32_t>() || value.Is<uint32_t>())
            return 2;
        if (value.Is<float>())
            return 1;
        return value.Is<double>() ? std::optional(0) : std::nullopt;
    default:
        return std::nullopt;
    }
}

std::optional<int> CallDistance(const Declaration &declaration, const std::vector<Value> &arguments) {
    if (arguments.size() < declaration.RequiredArguments() || arguments.size() > declaration.parameters.size())
        return std::nullopt;
    int sum = 0;
    for (size_t index = 0; index < arguments.size(); ++index) {
        std::optional<int> distance = Distance(arguments[index], declaration.parameters[index].type);
        if (!distance)
            return std::nullopt;
        sum += *distance;
    }
    return sum;
}

std::string Describe(const std::vector<Value> &arguments) {
    std::string text;
    for (const Value &argument : arguments)
        text += (text.empty() ? "" : ", ") + argument.Describe();
    return "(" + text + ")";
}

} // namespace

std::optional<int> Distance(const Value &value, const Type &type) {
    if (value.IsNil())
        return type.IsCounted() ? std::optional(type.kind == TypeKind::kVariant ? 2 : 1) : std::nullopt;
    if (value.Is<Reference>())
        return ObjectDistance(value.As<Reference>().Get(), type);
    return type.isArray ? std::nullopt : ScalarDistance(value, type.kind);
}

const Method &ChooseMethod(const std::string &owner, std::span<const Method> methods, std::string_view name,
                           const std::vector<Value> &arguments) {
    const Method *best = nullptr;
    int bestDistance = 0;
    bool ambiguous = false;
    bool isKnown = false;
    // A name alone is most of the calls that a program makes, and comparing declarations takes long.
    const bool isDeclaration = name.find_first_of(" (") != std::string_view::npos;
    for (const Method &method : methods) {
        bool isWhole = isDeclaration && SameDeclaration(method.declaration.text, name);
        if (!isWhole && !EqualIgnoringCase(method.declaration.name, name))
            continue;
        isKnown = true;
        std::optional<int> distance = CallDistance(method.declaration, arguments);
        if (!distance)
            continue;
        if (best && *distance == bestDistance)
            ambiguous = true;
        if (best && *distance >= bestDistance)
            continue;
        best = &method;
        bestDistance = *distance;
        ambiguous = false;
    }
    std::string what = owner + "." + std::string(name);
    if (!isKnown)
        throw ProgramError("there is no " + what);
    if (!best)
        throw ProgramError("no " + what + " takes " + Describe(arguments));
    if (ambiguous)
        throw ProgramError("more than one " + what + " takes " + Describe(arguments) + "; give the whole declaration");
    return *best;
}

Value Widen(const Value &value, const Type &type) {
    if (type.isArray || value.IsNil() || value.Is<Reference>())
        return value;
    switch (type.kind) {
    case TypeKind::kUInt32:
        return static_cast<uint32_t>(ToInteger(value));
    case TypeKind::kInt64:
        return ToInteger(value);
    case TypeKind::kSingle:
        return static_cast<float>(ToDouble(value));
    case TypeKind::kDouble:
        return ToDouble(value);
    default:
        return value;
    }
}

void RequireElementFits(const ArrayEntity &array, const Value &value) {
    if (!Distance(value, ParseType(array.TypeName())))
        throw ProgramError("an array of " + array.TypeName() + " does not take " + value.Describe());
}

} // namespace sim::host
