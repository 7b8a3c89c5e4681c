// The types of the host language, and which values fit where.
#pragma once

#include "simulator/host/declarations/declaration.h"

#include <optional>
#include <string>

namespace sim::language {

struct ClassSymbol;

enum class Kind {
    kNothing, ///< what a sub gives
    kBoolean,
    kInteger,
    kUInt32,
    kInt64,
    kSingle,
    kDouble,
    kColor,
    kString,
    kVariant,
    kNil,    ///< the type of Nil itself
    kObject, ///< an instance of `itsClass`, or of any class where that is null
};

struct Type {
    Kind kind = Kind::kNothing;
    bool isArray = false;
    const ClassSymbol *itsClass = nullptr;

    bool operator==(const Type &) const = default;

    Type Element() const { return {kind, false, itsClass}; }
    Type Array() const { return {kind, true, itsClass}; }
    bool Is(Kind wanted) const { return kind == wanted && !isArray; }
    bool IsWhole() const { return !isArray && (Is(Kind::kInteger) || Is(Kind::kUInt32) || Is(Kind::kInt64)); }
    bool IsNumber() const { return IsWhole() || Is(Kind::kSingle) || Is(Kind::kDouble); }
    /// What can be Nil: objects, arrays and variants.
    bool CanBeNil() const { return isArray || kind >= Kind::kVariant; }
    /// "String", "MDItemQTX()", "nothing".
    std::string Name() const;
};

/// The type whose name that is, in any case, other than a class; nothing for other names.
std::optional<Kind> KindNamed(std::string_view name);

/// How far a value of one type is from fitting where another is declared: 0 for the same type, more for each step of
/// widening, most for what has to prove itself when the program runs. Nothing when it does not fit.
std::optional<int> Distance(const Type &from, const Type &to);

/// What a variable holds before anything is put in; for an array that is Nil, and the variable gets a new one.
host::Value DefaultOf(const Type &type);

/// The name by which the host makes an array of these.
std::string HostElementName(const Type &element);

} // namespace sim::language
