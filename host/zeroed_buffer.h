// Zeroed buffers on the heap: for texts that are too long for the stack, and for those that the interface puts there.
#pragma once

#include <cstdlib>
#include <memory>

struct FreeBlock {
    void operator()(void *block) const { std::free(block); }
};

template <class Unit> using ZeroedBuffer = std::unique_ptr<Unit, FreeBlock>;

/// A zeroed buffer of that many bytes; null when there is no memory.
template <class Unit> ZeroedBuffer<Unit> NewZeroedBuffer(size_t size) {
    return ZeroedBuffer<Unit>(static_cast<Unit *>(std::calloc(size, 1)));
}
