// All that a host program can do with the library, made from what the library declares: a method that is declared
// tomorrow is among them without anyone thinking of it.
#pragma once

#include "tests/faults/leaves.h"
#include "tests/faults/stage.h"

#include <functional>

namespace tests::faults {

/// Around what is tried, so that getting ready for it meets no fault.
struct Around {
    std::function<void()> begin;
    std::function<void()> end;
};

struct Deed {
    std::string name;
    /// As the table of exceptions has it: "MDQueryQTX.Execute".
    std::string member;
    /// "" for what belongs to no class.
    std::string className;
    std::function<void(Stage &stage, const Around &around, Leaves &leaves)> act;
    /// Whether an exception out of the library finds somebody: not where an object dies, nor in the run loop.
    bool canThrow = true;
};

/// For every class: making it, each constructor, method, property (read and set) and event, and dropping it; objects
/// with and without something behind them. And each shared and each global method.
std::vector<Deed> DeedsOf(Stage &stage);

} // namespace tests::faults
