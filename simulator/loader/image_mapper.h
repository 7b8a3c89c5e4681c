// Memory for an Image: its segments at a place of the system's choosing, moved there by rebasing, with the protections
// that the file asks for. Knows nothing of names.
#pragma once

#include "simulator/loader/image.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace sim::loader {

class MappedImage {
public:
    // Maps the segments of `image`, read from `bytes`, all writable for now, and rebases them. Throws LoadError when
    // the system has no room. `image` and `bytes` are not needed afterwards.
    MappedImage(const Image &image, std::span<const uint8_t> bytes, std::string_view file);
    MappedImage(MappedImage &&other) noexcept;
    MappedImage &operator=(MappedImage &&) = delete;
    ~MappedImage(); // unmaps

    // Where the linker's `address` came to lie.
    uint8_t *At(uint32_t address) const { return memory_ + (address - base_); }
    // The linker's address of what lies there now; nothing outside the image.
    std::optional<uint32_t> AddressOf(const void *place) const;
    void WriteWord(uint32_t address, uint32_t value) const;
    uint32_t ReadWord(uint32_t address) const;

    // Gives every segment its own protection. Nothing outside the writable ones may be written from here on.
    void Protect() const;
    // Takes every access away, until Protect.
    void Forbid() const;

    // The memory of the segments that stay writable: the image's static data.
    std::vector<std::span<uint8_t>> StaticData() const;

private:
    struct Extent {
        uint32_t offset;
        uint32_t size;
        int protection;
        bool writable;
    };

    uint8_t *memory_ = nullptr;
    size_t size_ = 0;
    uint32_t base_ = 0;
    std::vector<Extent> extents_;
};

} // namespace sim::loader
