// The first directory of the EXIF data in a JPEG file: a small TIFF file of tagged values, in either order of bytes. Of
// its tags only those that have an attribute of their own are read.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/image_header.h"

#include <span>

namespace sim::macos {

/// Adds what the directory says to the header. The bytes are those after the "Exif" mark; values that lie outside them
/// are left out.
void ReadExifDirectory(std::span<const std::uint8_t> tiff, ImageHeader &header);

} // namespace sim::macos
