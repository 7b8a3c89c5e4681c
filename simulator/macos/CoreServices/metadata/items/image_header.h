// What the first bytes of a picture say about it, for the formats that are read here: PNG, JPEG and GIF. The readers
// are our own, walkers over chunks, segments and blocks: of the Debian libraries' 32-bit packages, libpng's must match
// the 64-bit one to the revision and cannot be installed whenever one of the two has been updated first; and neither
// decoder is needed to read a few headers.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/file_bytes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sim::macos {

struct ImageHeader {
    std::int64_t pixelWidth = 0;
    std::int64_t pixelHeight = 0;
    int bitsPerSample = 0;
    /// "RGB", "Gray" or "CMYK"; a picture with a palette counts as RGB.
    std::string_view colorSpace;
    bool hasAlpha = false;
    /// Dots per inch; nothing where the file gives no unit.
    std::optional<double> widthDPI;
    std::optional<double> heightDPI;
    /// True when a viewer turns the picture by a quarter.
    bool isShownOnItsSide = false;
    std::optional<std::string> profileName;
    std::optional<std::string> make;
    std::optional<std::string> model;
};

/// Nothing for bytes that are not such a picture, or not a whole header of one.
std::optional<ImageHeader> ReadPNGHeader(const FileBytes &file);
std::optional<ImageHeader> ReadJPEGHeader(const FileBytes &file);
std::optional<ImageHeader> ReadGIFHeader(const FileBytes &file);

} // namespace sim::macos
