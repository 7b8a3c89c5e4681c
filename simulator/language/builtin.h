// The host's own classes and functions as programs see them: tables of declarations in the host's language, each with
// the function that does it.
#pragma once

#include "simulator/language/execution.h"

#include <span>

namespace sim::language {

using NativeFunction = host::Value (*)(Call &call);

struct FunctionRow {
    const char *declaration;
    NativeFunction function;
    bool isShared = false;
};

struct PropertyRow {
    const char *declaration; ///< "Year As Integer"
    NativeFunction get;
    NativeFunction set = nullptr;
    bool isShared = false;
};

struct BuiltInClass {
    const char *name;
    const char *super = nullptr;
    /// Null for a class without instances.
    host::Object (*make)(Execution &execution, const ClassSymbol &exact) = nullptr;
    std::span<const FunctionRow> functions = {};
    std::span<const PropertyRow> properties = {};
    /// "ModeSingle=1"
    std::span<const char *const> constants = {};
};

/// Adds every class of the host itself, and its functions.
void AddBuiltIns(Symbols &symbols);

// What the rooms' files contribute.
std::span<const BuiltInClass> ExceptionClasses();
const BuiltInClass &DateClass();
const BuiltInClass &DictionaryClass();
const BuiltInClass &MemoryBlockClass();
const BuiltInClass &FolderItemClass();
const BuiltInClass &SpecialFolderClass();
std::span<const BuiltInClass> StreamClasses();
/// Not a class: each routine takes the Variant as its first argument.
const BuiltInClass &VariantMembers();
std::span<const FunctionRow> TextFunctions();
std::span<const FunctionRow> NumberFunctions();

// Arguments of a call, which have the declared types.
std::string TextAt(const Call &call, size_t index);
int32_t IntegerAt(const Call &call, size_t index);

} // namespace sim::language
