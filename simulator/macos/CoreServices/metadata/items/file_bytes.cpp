#include "simulator/macos/CoreServices/metadata/items/file_bytes.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sim::macos {

namespace {

constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_LARGEFILE;

/// Only the owner of a file may read it without marking the access.
int OpenQuietly(const char *path) {
    const int descriptor = open(path, kFlags | O_NOATIME);
    return descriptor < 0 && errno == EPERM ? open(path, kFlags) : descriptor;
}

bool IsRegular(const char *path) {
    struct stat64 status;
    return lstat64(path, &status) == 0 && S_ISREG(status.st_mode);
}

} // namespace

FileBytes::FileBytes(const std::string &path) : descriptor_(IsRegular(path.c_str()) ? OpenQuietly(path.c_str()) : -1) {}

FileBytes::~FileBytes() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

std::vector<std::uint8_t> FileBytes::Read(std::uint64_t offset, std::size_t count) const {
    std::vector<std::uint8_t> bytes(descriptor_ < 0 ? 0 : count);
    std::size_t have = 0;
    while (have < bytes.size()) {
        const ssize_t got =
            pread64(descriptor_, bytes.data() + have, bytes.size() - have, static_cast<off64_t>(offset + have));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        have += static_cast<std::size_t>(got);
    }
    bytes.resize(have);
    return bytes;
}

std::uint16_t BigEndian16(std::span<const std::uint8_t> bytes) {
    return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

std::uint32_t BigEndian32(std::span<const std::uint8_t> bytes) {
    return static_cast<std::uint32_t>(BigEndian16(bytes)) << 16 | BigEndian16(bytes.subspan(2));
}

} // namespace sim::macos
