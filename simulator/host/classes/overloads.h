// Which of several declarations a call means: the one whose parameters take the arguments with the least conversion, as
// the compiler of the host language decides. Types are strict: no text where a number is declared, no number for a
// boolean.
#pragma once

#include "simulator/host/classes/classes.h"

#include <span>

namespace sim::host {

class ArrayEntity;

/// How far a value is from a type: 0 for the same, more for each step of widening, nothing when it does not fit.
std::optional<int> Distance(const Value &value, const Type &type);

/// The method that a call means; `name` is a method's name or its whole declaration. Throws ProgramError when there is
/// none, or more than one fits equally well.
const Method &ChooseMethod(const std::string &owner, std::span<const Method> methods, std::string_view name,
                           const std::vector<Value> &arguments);

/// The value as the type has it: an integer widened, a preset taken as it is. The value must fit.
Value Widen(const Value &value, const Type &type);

/// Throws ProgramError when an array of objects may not hold that.
void RequireElementFits(const ArrayEntity &array, const Value &value);

} // namespace sim::host
