#include "simulator/loader/elf_imports.h"
#include "simulator/loader/load_error.h"
#include "tests/simulator/loader/image_builder.h"

#include <doctest/doctest.h>

#include <elf.h>
#include <fstream>
#include <iterator>

namespace sim::loader {
namespace {

Bytes NativeLibrary() {
    std::ifstream stream(NATIVE_LIBRARY, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string Fault(Bytes bytes, const std::set<std::string> &names) {
    try {
        HideImports(bytes, names, "file");
        return "";
    } catch (const LoadError &error) {
        return error.what();
    }
}

size_t Differences(const Bytes &left, const Bytes &right) {
    size_t count = 0;
    for (size_t i = 0; i < left.size(); ++i)
        count += left[i] != right[i];
    return count;
}

TEST_CASE("Hiding a weak import changes where its name begins and nothing else") {
    const Bytes before = NativeLibrary();
    Bytes after = before;
    HideImports(after, {"friendsOptionalDatum"}, "file");
    REQUIRE(after.size() == before.size());
    const size_t changed = Differences(before, after);
    CHECK(changed >= 1);
    CHECK(changed <= 4);
}

TEST_CASE("Names that the library does not import, or defines itself, are left alone") {
    const Bytes before = NativeLibrary();
    Bytes after = before;
    HideImports(after, {}, "file");
    HideImports(after, {"noSuchName", "REALPluginMain"}, "file");
    CHECK(after == before);
}

TEST_CASE("A strong import cannot be hidden") {
    CHECK(Fault(NativeLibrary(), {"friendsDatum"}) == "file: symbols not found: friendsDatum (not a weak import)");
}

TEST_CASE("What is no 32-bit Intel library is refused") {
    CHECK(Fault({}, {}) == "file: the file ends too early");
    Bytes bytes = NativeLibrary();
    bytes[EI_CLASS] = ELFCLASS64;
    CHECK(Fault(bytes, {}) == "file: is not a shared library for 32-bit Intel");
}

TEST_CASE("A library cut short anywhere before its section headers end is refused") {
    const Bytes whole = NativeLibrary();
    for (size_t length = 0; length < whole.size(); length += 1 + length / 64) {
        CAPTURE(length);
        const std::string fault =
            Fault({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}, {"friendsOptionalDatum"});
        CHECK((fault == "file: the file ends too early" || fault == "file: the file points past its end"));
    }
}

} // namespace
} // namespace sim::loader
