#include "convert/memory_blocks.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

#include "host/exceptions.h"
#include "host/owned.h"
#include "host/services.h"

CFTypeRef CopyMemoryBlock(REALobjectStruct *block) {
    const auto hold = Hold(block);
    const int32_t size = std::max<int32_t>(memoryBlockGetSize(block), 0);
    const auto *bytes = static_cast<const UInt8 *>(memoryBlockGetPtr(block));
    return CFDataCreate(kCFAllocatorDefault, bytes, bytes ? size : 0);
}

namespace {

/// +1, or null, whatever the host's reason.
OwnedObject NewMemoryBlock(CFIndex length) {
    if (length >= INT32_MAX)
        return {};
    try {
        return OwnedObject::Adopt(newMemoryBlock(static_cast<int32_t>(length)));
    } catch (const std::bad_alloc &) {
        return {};
    }
}

} // namespace

REALobjectStruct *HostMemoryBlock(CFTypeRef value) {
    const auto data = static_cast<CFDataRef>(value);
    const UInt8 *bytes = CFDataGetBytePtr(data);
    const CFIndex length = CFDataGetLength(data);
    if (!bytes || length < 1)
        return nullptr;

    auto block = NewMemoryBlock(length);
    void *memory = block ? memoryBlockGetPtr(block.Get()) : nullptr;
    if (!memory) {
        block = {};
        char message[200];
        std::snprintf(message, sizeof message, "Failed to allocate a memoryblock with %lld bytes in size.",
                      static_cast<long long>(length));
        RaiseException("OutOfMemoryException", message);
        return nullptr;
    }
    std::memcpy(memory, bytes, static_cast<size_t>(length));
    // Hosts have always been asked for one more reference, to be given up at once.
    { const auto hold = Hold(block.Get()); }
    return block.Give();
}
