// A failure of the frameworks on demand, for as long as the object lives: what a test arms cannot reach the next one,
// whichever way the test ends. One at a time.
#pragma once

#include "simulator/macos/control/faults.h"

#include <string_view>

namespace tests {

class Fault {
public:
    /// Every call of that function fails.
    explicit Fault(std::string_view function) {
        sim::macos::faults::Reset();
        sim::macos::faults::FailEvery(function);
    }
    /// The n-th call of it from now on fails, once; the first is 1.
    Fault(std::string_view function, std::size_t n) {
        sim::macos::faults::Reset();
        sim::macos::faults::FailCall(function, n);
    }
    /// The n-th call from now on of any function that can fail; none for 0, which counts them only.
    explicit Fault(std::size_t n) {
        sim::macos::faults::Reset();
        if (n > 0)
            sim::macos::faults::FailCall(n);
    }
    ~Fault() { sim::macos::faults::Reset(); }
    Fault(const Fault &) = delete;
    Fault &operator=(const Fault &) = delete;

    /// How many calls failed, and how many could have, since it was armed.
    std::size_t Failed() const { return sim::macos::faults::Failed(); }
    std::size_t Count() const { return sim::macos::faults::Count(); }
};

} // namespace tests
