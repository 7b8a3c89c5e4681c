// What becomes of a value that is put where another type is declared.
#pragma once

#include "simulator/language/execution.h"

namespace sim::language {

/// The value as the type has it. What comes out of a Variant may not fit: that raises a TypeMismatchException, or an
/// IllegalCastException for an object of another class.
host::Value Converted(Execution &execution, const host::Value &value, const Type &type, const Location &where);

/// A number, a text or a truth as a number of that kind.
host::Value NumberAs(const host::Value &value, Kind kind);

/// A value that came from the plugin or out of an array: what is absent is the type's default, and text is
/// in UTF-8.
host::Value Tidied(host::Value value, const Type &type);

} // namespace sim::language
