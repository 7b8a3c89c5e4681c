#include "convert/memory_blocks.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

#include "host/exceptions.h"

OwnedCF<CFDataRef> CopyMemoryBlock(REALobjectStruct *block) {
    const auto hold = Hold(block);
    const int32_t size = std::max<int32_t>(memoryBlockGetSize(block), 0);
    const auto *bytes = static_cast<const UInt8 *>(memoryBlockGetPtr(block));
    return AdoptCF(CFDataCreate(kCFAllocatorDefault, bytes, bytes ? size : 0));
}

namespace {

/// Null when there is no block of that size, whatever the host's way to say so.
OwnedObject NewBlockOfSize(CFIndex length) {
    if (length >= INT32_MAX)
        return {};
    try {
        return AdoptHost(newMemoryBlock(static_cast<int32_t>(length)));
    } catch (const std::bad_alloc &) {
        return {};
    }
}

} // namespace

OwnedObject NewMemoryBlock(CFDataRef data) {
    const UInt8 *bytes = CFDataGetBytePtr(data);
    const CFIndex length = CFDataGetLength(data);
    if (!bytes || length < 1)
        return {};

    auto block = NewBlockOfSize(length);
    void *memory = block ? memoryBlockGetPtr(block.Get()) : nullptr;
    if (!memory) {
        Release(block);
        char message[200];
        std::snprintf(message, sizeof message, "Failed to allocate a memoryblock with %lld bytes in size.",
                      static_cast<long long>(length));
        RaiseException("OutOfMemoryException", message);
        return {};
    }
    std::memcpy(memory, bytes, static_cast<size_t>(length));
    // Hosts have always been asked for one more reference, to be given up at once.
    auto hold = Hold(block.Get());
    Release(hold);
    return block;
}
