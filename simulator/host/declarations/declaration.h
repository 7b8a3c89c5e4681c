// Declarations in the host's language, as plugins write them into their records:
//   Results(limit as integer = -1) as MDItemQTX()      BatchingParameters as MDQueryBatchingParamsQTX
//   Stop                                               Value(key As Variant, Assigns _value As Variant)
//   kMDQuerySynchronous=1                              kMDQueryScopeHome="kMDQueryScopeHome"
// Case and blanks do not matter. What this grammar does not know stops the host.
#pragma once

#include "simulator/host/entities/value.h"

#include <optional>

namespace sim::host {

enum class TypeKind {
    kNone,
    kBoolean,
    kInt32,
    kUInt32,
    kInt64,
    kSingle,
    kDouble,
    kColor,
    kString,
    kVariant,
    kObject, ///< any class; className is empty for "object" itself
};

struct Type {
    TypeKind kind = TypeKind::kNone;
    bool isArray = false;
    /// As written: "integer", "MDItemQTX".
    std::string name;

    /// A reference that is counted: a string, a variant, an object, an array.
    bool IsCounted() const { return isArray || kind >= TypeKind::kString; }
    /// 32-bit words on the stack.
    size_t Words() const;
    std::string Describe() const { return kind == TypeKind::kNone ? "nothing" : name + (isArray ? "()" : ""); }
};

struct Parameter {
    std::string name;
    Type type;
    bool assigns = false;
    std::optional<Value> preset;
};

struct Declaration {
    std::string text;
    std::string name;
    std::vector<Parameter> parameters;
    Type result;

    size_t RequiredArguments() const;
    size_t Words() const;
};

struct ConstantDeclaration {
    std::string name;
    Value value;
};

Type ParseType(std::string_view text);
Declaration ParseDeclaration(std::string_view text);
ConstantDeclaration ParseConstant(std::string_view text);

/// Two spellings of one declaration: they differ in case and blanks only.
bool SameDeclaration(std::string_view left, std::string_view right);

} // namespace sim::host
