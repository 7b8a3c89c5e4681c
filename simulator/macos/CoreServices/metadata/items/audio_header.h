// What a file of sound says about itself: how long it plays, what it is called and who made it. TagLib reads it, in all
// the formats that it knows.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/file_bytes.h"

#include <cstdint>
#include <optional>
#include <string>

namespace sim::macos {

struct AudioHeader {
    double seconds = 0;
    /// Bits, samples per second; 0 where the file does not tell.
    std::int64_t bitRate = 0;
    std::int64_t sampleRate = 0;
    std::int64_t channels = 0;
    /// 0 for none.
    std::int64_t track = 0;
    /// UTF-8; empty for none.
    std::string title;
    std::string artist;
    std::string album;
    std::string genre;
};

/// Nothing for what is no sound. The extension, without a dot, says where the bytes do not.
std::optional<AudioHeader> ReadAudioHeader(const FileBytes &file, std::uint64_t size, std::string_view extension);

} // namespace sim::macos
