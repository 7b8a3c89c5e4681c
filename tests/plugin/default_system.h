// The system as every program finds it, before a test and after it, whatever the test makes of it.
#pragma once

#include "simulator/macos/control/environment.h"
#include "simulator/macos/control/faults.h"

namespace tests {

struct DefaultSystem {
    DefaultSystem() { Reset(); }
    ~DefaultSystem() { Reset(); }
    DefaultSystem(const DefaultSystem &) = delete;
    DefaultSystem &operator=(const DefaultSystem &) = delete;

    static void Reset() {
        sim::macos::environment::Reset();
        sim::macos::faults::Reset();
    }
};

} // namespace tests
