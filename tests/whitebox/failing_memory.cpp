#include "tests/whitebox/failing_memory.h"

namespace {

whitebox::FailingMemory *current = nullptr;

} // namespace

extern "C" {
void *__real_calloc(size_t count, size_t size);
void *__wrap_calloc(size_t count, size_t size);
}

void *__wrap_calloc(size_t count, size_t size) {
    return current && !current->Gives(count * size) ? nullptr : __real_calloc(count, size);
}

namespace whitebox {

FailingMemory::FailingMemory(int number) : callsUntilFailure_(number) { current = this; }
FailingMemory::~FailingMemory() { current = nullptr; }

bool FailingMemory::Gives(size_t bytes) {
    asked_.push_back(bytes);
    return callsUntilFailure_ == 0 || --callsUntilFailure_ != 0;
}

} // namespace whitebox
