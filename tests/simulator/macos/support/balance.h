// What a test of the stand-in system begins with: a system as it is usually found, and no failures planned. When it
// ends, whatever it made must be gone again.
#pragma once

#include "simulator/macos/CoreFoundation/ledger.h"
#include "simulator/macos/CoreFoundation/notifications.h"
#include "simulator/macos/control/environment.h"
#include "simulator/macos/control/faults.h"

#include <doctest/doctest.h>

namespace tests {

class Balanced {
public:
    Balanced() { Reset(); }
    ~Balanced() {
        Reset();
        const std::string difference = sim::macos::ledger::Since(before_).ToText();
        CHECK(difference == "");
        CHECK(sim::macos::notifications::RegistrationCount() == registrationsBefore_);
    }
    Balanced(const Balanced &) = delete;
    Balanced &operator=(const Balanced &) = delete;

private:
    static void Reset() {
        sim::macos::faults::Reset();
        sim::macos::environment::Reset();
    }

    sim::macos::ledger::Snapshot before_ = sim::macos::ledger::Take();
    size_t registrationsBefore_ = sim::macos::notifications::RegistrationCount();
};

} // namespace tests
