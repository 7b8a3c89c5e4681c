#include "simulator/language/types.h"

#include "simulator/host/ground/text.h"
#include "simulator/language/symbols.h"

namespace sim::language {

namespace {

struct KindRow {
    const char *name;
    Kind kind;
};

/// The first name of a kind is the one that messages use.
constexpr KindRow kKinds[] = {
    {"Boolean", Kind::kBoolean}, {"Integer", Kind::kInteger}, {"Int32", Kind::kInteger}, {"UInt32", Kind::kUInt32},
    {"Int64", Kind::kInt64},     {"Single", Kind::kSingle},   {"Double", Kind::kDouble}, {"Color", Kind::kColor},
    {"String", Kind::kString},   {"Variant", Kind::kVariant}, {"Nil", Kind::kNil},       {"Object", Kind::kObject},
};

constexpr int kNilDistance = 1;
constexpr int kNarrowingDistance = 4;
constexpr int kVariantDistance = 5;
constexpr int kUncertainDistance = 6;

std::string KindName(Kind kind) {
    for (const KindRow &row : kKinds)
        if (row.kind == kind)
            return row.name;
    return "nothing";
}

/// Numbers in the order in which one holds all of the others before it, more or less.
int RankOf(Kind kind) { return static_cast<int>(kind); }

std::optional<int> NumberDistance(const Type &from, const Type &to) {
    const int steps = RankOf(to.kind) - RankOf(from.kind);
    return steps >= 0 ? steps : kNarrowingDistance;
}

std::optional<int> ClassDistance(const Type &from, const Type &to) {
    int steps = 0;
    for (const ClassSymbol *itsClass = from.itsClass; itsClass; itsClass = itsClass->super, ++steps)
        if (itsClass == to.itsClass)
            return steps;
    return to.itsClass ? std::nullopt : std::optional(steps);
}

} // namespace

std::string Type::Name() const {
    const std::string name = kind == Kind::kObject && itsClass ? itsClass->name : KindName(kind);
    return isArray ? name + "()" : name;
}

std::optional<Kind> KindNamed(std::string_view name) {
    for (const KindRow &row : kKinds)
        if (row.kind != Kind::kNil && host::EqualIgnoringCase(row.name, name))
            return row.kind;
    return std::nullopt;
}

std::optional<int> Distance(const Type &from, const Type &to) {
    if (from.kind == Kind::kNothing || to.kind == Kind::kNothing)
        return std::nullopt;
    if (from == to)
        return 0;
    if (to.Is(Kind::kVariant))
        return kVariantDistance;
    if (from.Is(Kind::kNil))
        return to.CanBeNil() ? std::optional(kNilDistance) : std::nullopt;
    if (from.Is(Kind::kVariant))
        return kUncertainDistance;
    if (from.isArray || to.isArray)
        return std::nullopt;
    if (from.IsNumber() && to.IsNumber())
        return NumberDistance(from, to);
    if (from.Is(Kind::kObject) && to.Is(Kind::kObject))
        return ClassDistance(from, to);
    return std::nullopt;
}

host::Value DefaultOf(const Type &type) {
    if (type.isArray)
        return nullptr;
    switch (type.kind) {
    case Kind::kBoolean:
        return false;
    case Kind::kInteger:
        return int32_t{0};
    case Kind::kUInt32:
        return uint32_t{0};
    case Kind::kInt64:
        return int64_t{0};
    case Kind::kSingle:
        return 0.0f;
    case Kind::kDouble:
        return 0.0;
    case Kind::kColor:
        return host::Color{};
    case Kind::kString:
        return "";
    default:
        return nullptr;
    }
}

std::string HostElementName(const Type &element) {
    if (element.kind == Kind::kObject && element.itsClass && element.itsClass->hostClass)
        return element.itsClass->hostClass->name;
    return host::LowerCase(element.Element().Name());
}

} // namespace sim::language
