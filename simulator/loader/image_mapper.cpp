#include "simulator/loader/image_mapper.h"

#include "simulator/loader/load_error.h"
#include "simulator/loader/macho_format.h"

#include <cerrno>
#include <cstring>
#include <sys/mman.h>
#include <utility>

namespace sim::loader {
namespace {

uint32_t WholePages(uint32_t size) { return (size + macho::kPageSize - 1) & ~(macho::kPageSize - 1); }

int SystemProtection(uint32_t protection) {
    int result = PROT_NONE;
    if (protection & macho::kProtectionRead)
        result |= PROT_READ;
    if (protection & macho::kProtectionWrite)
        result |= PROT_WRITE;
    if (protection & macho::kProtectionExecute)
        result |= PROT_EXEC;
    return result;
}

} // namespace

MappedImage::MappedImage(const Image &image, std::span<const uint8_t> bytes, std::string_view file)
    : size_(WholePages(image.imageSize)), base_(image.base) {
    void *memory = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw LoadError(file, std::string("cannot be mapped: ") + std::strerror(errno));
    memory_ = static_cast<uint8_t *>(memory);

    for (const Segment &segment : image.segments) {
        if (segment.fileSize > 0)
            std::memcpy(At(segment.address), bytes.data() + segment.fileOffset, segment.fileSize);
        extents_.push_back({segment.address - base_, segment.memorySize, SystemProtection(segment.protection),
                            (segment.protection & macho::kProtectionWrite) != 0});
    }
    const uint32_t slide = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(memory_)) - base_;
    for (const uint32_t address : image.rebases)
        WriteWord(address, ReadWord(address) + slide);
}

MappedImage::MappedImage(MappedImage &&other) noexcept
    : memory_(std::exchange(other.memory_, nullptr)), size_(other.size_), base_(other.base_),
      extents_(std::move(other.extents_)) {}

MappedImage::~MappedImage() {
    if (memory_)
        munmap(memory_, size_);
}

std::optional<uint32_t> MappedImage::AddressOf(const void *place) const {
    const uintptr_t distance = reinterpret_cast<uintptr_t>(place) - reinterpret_cast<uintptr_t>(memory_);
    if (distance >= size_)
        return std::nullopt;
    return base_ + static_cast<uint32_t>(distance);
}

void MappedImage::WriteWord(uint32_t address, uint32_t value) const { std::memcpy(At(address), &value, sizeof value); }

uint32_t MappedImage::ReadWord(uint32_t address) const {
    uint32_t value = 0;
    std::memcpy(&value, At(address), sizeof value);
    return value;
}

void MappedImage::Protect() const {
    Forbid(); // gaps between segments belong to nobody
    for (const Extent &extent : extents_)
        mprotect(memory_ + extent.offset, WholePages(extent.size), extent.protection);
}

void MappedImage::Forbid() const { mprotect(memory_, size_, PROT_NONE); }

std::vector<std::span<uint8_t>> MappedImage::StaticData() const {
    std::vector<std::span<uint8_t>> result;
    for (const Extent &extent : extents_)
        if (extent.writable)
            result.emplace_back(memory_ + extent.offset, extent.size);
    return result;
}

} // namespace sim::loader
