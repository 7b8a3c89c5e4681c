#include "tests/whitebox/failing_memory.h"

#include <cstddef>

namespace {

int callsUntilFailure = 0; // 0: none

} // namespace

extern "C" {
void *__real_calloc(size_t count, size_t size);
void *__wrap_calloc(size_t count, size_t size);
}

void *__wrap_calloc(size_t count, size_t size) {
    if (callsUntilFailure > 0 && --callsUntilFailure == 0)
        return nullptr;
    return __real_calloc(count, size);
}

namespace whitebox {

FailingMemory::FailingMemory(int number) { callsUntilFailure = number; }
FailingMemory::~FailingMemory() { callsUntilFailure = 0; }

} // namespace whitebox
