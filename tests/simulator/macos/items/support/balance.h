// A test's first line: when it ends, whatever the test made must be gone again.
#pragma once

#include "simulator/macos/CoreFoundation/ledger.h"
#include "simulator/macos/control/faults.h"

#include <doctest/doctest.h>

namespace sim::macos {

class EndsBalanced {
public:
    EndsBalanced() { faults::Reset(); }
    ~EndsBalanced() {
        faults::Reset();
        const std::string difference = ledger::Since(before_).ToText();
        CHECK(difference == "");
    }
    EndsBalanced(const EndsBalanced &) = delete;
    EndsBalanced &operator=(const EndsBalanced &) = delete;

private:
    ledger::Snapshot before_ = ledger::Take();
};

} // namespace sim::macos
