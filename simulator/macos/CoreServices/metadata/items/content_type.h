// Which type a file is of. A folder, a link and a file with a well-known extension are known without a look inside; any
// other file is known by how it begins.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/uniform_type.h"

#include <cstdint>
#include <span>

namespace sim::macos {

class FileFacts;

/// The file must be there.
const UniformType &TypeOfFile(FileFacts &file);

/// The type that the first bytes of a file tell by their signature; null when they tell none.
const UniformType *TypeBySignature(std::span<const std::uint8_t> head);

/// True when the bytes read as text: UTF-8, UTF-16 with a mark, or the printable part of Latin-1. No bytes are no text.
bool LooksLikeText(std::span<const std::uint8_t> head);

} // namespace sim::macos
