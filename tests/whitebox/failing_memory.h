// Memory that runs out at a chosen call, and that tells what was asked of it: the link of these tests puts it in front
// of calloc.
#pragma once

#include <cstddef>
#include <vector>

namespace whitebox {

/// While it lives, calloc gives null at its call of that number, the first from now on being 1; at none, if it is 0.
class FailingMemory {
public:
    explicit FailingMemory(int number);
    FailingMemory(const FailingMemory &) = delete;
    FailingMemory &operator=(const FailingMemory &) = delete;
    ~FailingMemory();

    /// The bytes of each call since then.
    const std::vector<size_t> &Asked() const { return asked_; }
    /// A call of calloc: whether it gets memory.
    bool Gives(size_t bytes);

private:
    int callsUntilFailure_;
    std::vector<size_t> asked_;
};

} // namespace whitebox
