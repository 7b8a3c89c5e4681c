// A memory block on its way to the host: what is in it when the host next hears of it.
#include <doctest/doctest.h>

#include "convert/memory_blocks.h"
#include "host/services.h"
#include "tests/whitebox/fake_resolver.h"
#include "tests/whitebox/restored.h"

#include <string>

namespace {

char memory[3];
std::string seen;

REALobjectStruct *NewBlock(int32_t size) {
    CHECK(size == 3);
    return reinterpret_cast<REALobjectStruct *>(memory);
}
void *MemoryOf(REALobjectStruct *) { return memory; }
void Lock(REALobjectStruct *) { seen.assign(memory, sizeof memory); }
void Unlock(REALobjectStruct *) {}

} // namespace

TEST_CASE("A memory block has its bytes before the host is asked for one more reference") {
    const whitebox::Restored newBlock(newMemoryBlock);
    const whitebox::Restored memoryOf(memoryBlockGetPtr);
    const whitebox::Restored lock(REALLockObject);
    const whitebox::Restored unlock(REALUnlockObject);
    whitebox::FakeResolver resolver;
    resolver.Offer("newMemoryBlock", NewBlock);
    resolver.Offer("memoryBlockGetPtr", MemoryOf);
    resolver.Offer("REALLockObject", Lock);
    resolver.Offer("REALUnlockObject", Unlock);
    const auto data = AdoptCF(CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>("abc"), 3));
    CHECK(NewMemoryBlock(data.Get()));
    CHECK(seen == "abc");
}
