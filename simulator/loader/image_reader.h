// From the bytes of an i386 Mach-O dynamic library to an Image. Knows the format, no memory and no names; refuses
// what it does not model (other processors and file types, relocation tables, coalesced symbols, text relocations).
#pragma once

#include "simulator/loader/image.h"

#include <span>
#include <string_view>

namespace sim::loader {

// The checked contents of the library in `bytes`. `file` stands in front of messages. Throws LoadError.
Image ReadImage(std::span<const uint8_t> bytes, std::string_view file);

} // namespace sim::loader
