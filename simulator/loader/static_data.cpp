#include "simulator/loader/static_data.h"

#include <cstring>
#include <memory>
#include <vector>

// Defined by the leak checker when the program is built with it.
extern "C" [[gnu::weak]] void __lsan_register_root_region(const void *begin, size_t size);
extern "C" [[gnu::weak]] void __lsan_unregister_root_region(const void *begin, size_t size);

namespace sim::loader {

void BeginLeakRoot(std::span<uint8_t> data) {
    if (__lsan_register_root_region)
        __lsan_register_root_region(data.data(), data.size());
}

void EndLeakRoot(std::span<uint8_t> data) {
    if (__lsan_unregister_root_region)
        __lsan_unregister_root_region(data.data(), data.size());
}

// Reads word by word: the memory between instrumented variables is off limits for memcpy under AddressSanitizer.
[[clang::no_sanitize("address")]] void KeepReachable(std::span<const uint8_t> data) {
    if (!__lsan_register_root_region)
        return;
    static auto *const kept = new std::vector<std::vector<uintptr_t>>;
    std::vector<uintptr_t> words(data.size() / sizeof(uintptr_t));
    const auto *source = reinterpret_cast<const volatile uintptr_t *>(data.data());
    for (uintptr_t &word : words)
        word = *source++;
    kept->push_back(std::move(words));
}

} // namespace sim::loader
