// A shared library of this system brought in as a copy of its file, so that each one has static data of its own even
// when the same file was loaded before.
#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sim::loader {

class ElfImage {
public:
    // Loads a copy of the library in `bytes`. Its imports of the C names in `absent` are not met: weak ones become
    // null, others fail the load. Throws LoadError.
    ElfImage(std::span<const uint8_t> bytes, std::string_view file, const std::set<std::string> &absent);
    ElfImage(const ElfImage &) = delete;
    ElfImage &operator=(const ElfImage &) = delete;
    ~ElfImage();

    // The address of an export by its C name, or null.
    void *Find(const std::string &name) const;

    // "": the dynamic linker knows these addresses better.
    static std::string Describe(const void *) { return ""; }

private:
    std::vector<std::span<uint8_t>> StaticData() const;

    int descriptor_;
    void *handle_ = nullptr;
};

} // namespace sim::loader
