// What operators do with values whose types the checker has found to go together.
#pragma once

#include "simulator/language/execution.h"
#include "simulator/language/syntax_tree.h"

namespace sim::language {

/// How an operator takes two types: both are converted to `operands` first.
struct Operation {
    Type operands;
    Type result;
    host::Value (*apply)(Execution &execution, const host::Value &left, const host::Value &right,
                         const Location &where);
};

/// Nothing when the operator does not go with these types. And and Or are the checker's own affair.
std::optional<Operation> FindOperation(BinaryOperator op, const Type &left, const Type &right);

/// Whether two values are equal as Case and arrays' IndexOf see it.
bool AreEqual(const host::Value &left, const host::Value &right);

/// "+", "Mod"
const char *SpellingOf(BinaryOperator op);

} // namespace sim::language
