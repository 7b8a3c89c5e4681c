// The two little programs of the link-edit data: which words move with the image, and which are filled with the
// addresses of imports.
#pragma once

#include "simulator/loader/image.h"

#include <span>
#include <string_view>

namespace sim::loader {

// Appends to image.rebases. The segments must have been read. Throws LoadError.
void ReadRebases(Image &image, std::span<const uint8_t> stream, std::string_view file);

// Appends to image.binds and image.imports; `lazy` streams may end one import and go on with the next. The segments
// and libraries must have been read. Throws LoadError.
void ReadBinds(Image &image, std::span<const uint8_t> stream, bool lazy, std::string_view file);

} // namespace sim::loader
