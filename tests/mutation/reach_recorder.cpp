// Linked into a copy of the product that clang made to tell where it was: notes each of its places that ran, in the
// file that the environment names. The file has a byte for each place, 1 where it ran and 2 where it ran more than once
// in the life of one copy of the library, then for each the offset of its code in the library, four bytes. All copies
// of one library in a process share it, and it holds what ran in any of them.
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

extern "C" {
// The library's first byte, which the linker defines.
[[gnu::visibility("hidden")]] extern const char __ehdr_start;
void __sanitizer_cov_trace_pc_guard_init(uint32_t *begin, const uint32_t *end);
void __sanitizer_cov_trace_pc_guard(uint32_t *place);
void __sanitizer_cov_pcs_init(const uintptr_t *begin, const uintptr_t *end);
}

namespace {

uint8_t *marks = nullptr;
size_t places = 0;
/// Added to a place's number, which each copy of the library has for itself, when it has run.
constexpr uint32_t kRan = 0x80000000;

} // namespace

// Called once for each source, with the numbers of them all.
void __sanitizer_cov_trace_pc_guard_init(uint32_t *begin, const uint32_t *end) {
    const char *path = std::getenv("SPOTLIGHT_REACH");
    if (marks || !path)
        return;
    places = static_cast<size_t>(end - begin);
    const size_t size = places * (1 + sizeof(uint32_t));
    const int file = open(path, O_RDWR | O_CREAT, 0644);
    if (file < 0 || ftruncate(file, static_cast<off_t>(size)) != 0)
        std::abort();
    marks = static_cast<uint8_t *>(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
    close(file);
    if (marks == MAP_FAILED)
        std::abort();
    for (uint32_t i = 0; i < places; i++)
        begin[i] = i;
}

void __sanitizer_cov_pcs_init(const uintptr_t *begin, const uintptr_t *end) {
    if (!marks || static_cast<size_t>(end - begin) != 2 * places)
        return;
    // Of each pair the first is the address.
    auto *offsets = reinterpret_cast<uint32_t *>(marks + places);
    for (size_t i = 0; i < places; i++)
        offsets[i] = static_cast<uint32_t>(begin[2 * i] - reinterpret_cast<uintptr_t>(&__ehdr_start));
}

void __sanitizer_cov_trace_pc_guard(uint32_t *place) {
    if (!marks)
        return;
    uint8_t &mark = marks[*place & ~kRan];
    if (*place & kRan)
        mark = 2;
    else if (mark == 0)
        mark = 1;
    *place |= kRan;
}
