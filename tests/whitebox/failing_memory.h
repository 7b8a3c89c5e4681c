// Memory that runs out at a chosen call: the link of these tests puts it in front of calloc.
#pragma once

namespace whitebox {

/// While it lives, calloc gives null at its call of that number, the first from now on being 1.
class FailingMemory {
public:
    explicit FailingMemory(int number);
    FailingMemory(const FailingMemory &) = delete;
    FailingMemory &operator=(const FailingMemory &) = delete;
    ~FailingMemory();
};

} // namespace whitebox
