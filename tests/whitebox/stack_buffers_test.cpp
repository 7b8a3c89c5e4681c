// Short texts are converted without memory from the heap. AddressSanitizer tells which sizes were asked for; the sizes
// that the conversion would need are unlike any other here.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)

#include <doctest/doctest.h>

#include "host/owned.h"
#include "host/strings.h"
#include "tests/whitebox/small_host.h"

#include <sanitizer/allocator_interface.h>

#include <string>
#include <vector>

using whitebox::SmallHost;

namespace {

size_t watchedSize = 0;
int allocations = 0;

void NoteSize(const volatile void *, size_t size) {
    if (size == watchedSize)
        allocations++;
}

void Ignore(const volatile void *) {}

bool IsWatching() {
    static const int installed = __sanitizer_install_malloc_and_free_hooks(NoteSize, Ignore);
    return installed > 0;
}

/// How often the work asks for exactly that many bytes.
template <class Work> int AllocationsOf(size_t size, Work work) {
    REQUIRE(IsWatching());
    allocations = 0;
    watchedSize = size;
    work();
    watchedSize = 0;
    return allocations;
}

} // namespace

TEST_CASE("A 99-unit string uses the stack path and a 100-unit string the heap path, and both give the same text") {
    for (const uint32_t units : {1U, 98U, 99U, 100U, 101U, 199U}) {
        CAPTURE(units);
        SmallHost host(2013.04);
        const std::vector<UniChar> text(units, UniChar{0x20AC});
        const auto string = OwnedCF<CFStringRef>::Adopt(
            CFStringCreateWithCharacters(kCFAllocatorDefault, text.data(), static_cast<CFIndex>(text.size())));
        REALstringStruct *built = nullptr;
        CHECK(AllocationsOf(units * 6, [&] { built = CFString2RBString(string.Get()); }) == (units < 100 ? 0 : 1));
        REQUIRE(built);
        const std::string bytes = host.Take(built)->bytes;
        CHECK(bytes.size() == units * 3);
        for (size_t at = 0; at < bytes.size(); at += 3)
            REQUIRE(bytes.compare(at, 3, "\u20AC") == 0);
    }
}

TEST_CASE("On hosts below 2013.0, UTF-32 below 800 bytes uses the stack path and from 800 on the heap path") {
    for (const uint32_t bytes : {4U, 792U, 796U, 799U, 800U, 804U}) {
        CAPTURE(bytes);
        SmallHost host(2012.5);
        const uint32_t points = bytes / 4;
        const std::vector<uint32_t> text(points + 1, 'x');
        REALstringStruct *built = nullptr;
        CHECK(AllocationsOf(points * 4 + 2, [&] {
                  built = REALBuildUnicodeString(text.data(), int64_t{bytes}, kCFStringEncodingUTF32);
              }) == (bytes < 800 ? 0 : 1));
        REQUIRE(built);
        CHECK(host.Take(built)->bytes == std::string(points, 'x'));
    }
}

#endif
#endif
