// Arguments for declared methods.
#pragma once

#include "simulator/host/declarations/declaration.h"
#include "simulator/validate/program.h"

namespace sim::validate {

/// A value of the type, sensible or not: texts that are names, queries and neither; numbers of every size; lists with
/// holes; objects, with and without something behind them, and nil.
host::Value AnyOf(Program &program, const host::Type &type);

/// One for each parameter.
std::vector<host::Value> AnyArguments(Program &program, const host::Declaration &declaration);

/// One of them, as the program's random numbers say.
template <class Table> const auto &OneOf(Program &program, const Table &table) {
    return std::data(table)[program.Random()() % std::size(table)];
}

} // namespace sim::validate
