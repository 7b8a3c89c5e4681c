#include "simulator/loader/static_data.h"

// Defined by the leak checker when the program is built with it.
extern "C" [[gnu::weak]] void __lsan_register_root_region(const void *begin, size_t size);
extern "C" [[gnu::weak]] void __lsan_unregister_root_region(const void *begin, size_t size);

namespace sim::loader {
namespace {

// Memory is read and written word by word here: what lies between instrumented variables is off limits for memcpy under
// AddressSanitizer. Every part begins on a page, and ends where at worst a few bytes of its last page are left over.
size_t WordsIn(std::span<const uint8_t> part) { return (part.size() + sizeof(uintptr_t) - 1) / sizeof(uintptr_t); }

volatile uintptr_t *FirstWordOf(std::span<uint8_t> part) { return reinterpret_cast<volatile uintptr_t *>(part.data()); }

void Keep(uintptr_t word) {
    static auto *const kept = new std::vector<uintptr_t>;
    if (__lsan_register_root_region && word != 0)
        kept->push_back(word);
}

} // namespace

void BeginLeakRoot(std::span<uint8_t> data) {
    if (__lsan_register_root_region)
        __lsan_register_root_region(data.data(), data.size());
}

void EndLeakRoot(std::span<uint8_t> data) {
    if (__lsan_unregister_root_region)
        __lsan_unregister_root_region(data.data(), data.size());
}

[[clang::no_sanitize("address")]] StaticData::StaticData(std::vector<std::span<uint8_t>> parts)
    : parts_(std::move(parts)) {
    for (const std::span<uint8_t> part : parts_) {
        const volatile uintptr_t *source = FirstWordOf(part);
        std::vector<uintptr_t> &words = first_.emplace_back(WordsIn(part));
        for (uintptr_t &word : words)
            word = *source++;
    }
}

[[clang::no_sanitize("address")]] void StaticData::Restore() const {
    for (size_t i = 0; i < parts_.size(); ++i) {
        volatile uintptr_t *place = FirstWordOf(parts_[i]);
        for (const uintptr_t word : first_[i]) {
            if (*place != word) {
                Keep(*place);
                *place = word;
            }
            ++place;
        }
    }
}

[[clang::no_sanitize("address")]] void StaticData::KeepReachable() const {
    for (const std::span<uint8_t> part : parts_) {
        const volatile uintptr_t *source = FirstWordOf(part);
        for (size_t left = WordsIn(part); left > 0; --left)
            Keep(*source++);
    }
}

} // namespace sim::loader
