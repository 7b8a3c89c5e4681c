// The bytes of a regular file, read where they are needed. Reading leaves no trace: where the system allows it, the
// time of the last access stays what it was.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace sim::macos {

class FileBytes {
public:
    /// Opens nothing but a regular file: a pipe would wait, a device would do what devices do.
    explicit FileBytes(const std::string &path);
    ~FileBytes();
    FileBytes(const FileBytes &) = delete;
    FileBytes &operator=(const FileBytes &) = delete;

    /// False when the file is missing, unreadable or not a regular file; every read is empty then.
    bool IsOpen() const { return descriptor_ >= 0; }

    /// The bytes from `offset` on, at most `count`; fewer at the end of the file, none after it or on an error.
    std::vector<std::uint8_t> Read(std::uint64_t offset, std::size_t count) const;

private:
    int descriptor_ = -1;
};

/// Numbers in the order of bytes that image files use. The span must hold the number's bytes.
std::uint16_t BigEndian16(std::span<const std::uint8_t> bytes);
std::uint32_t BigEndian32(std::span<const std::uint8_t> bytes);

} // namespace sim::macos
