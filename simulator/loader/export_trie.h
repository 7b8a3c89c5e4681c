// The exported names of an image, kept in the file as a prefix tree.
#pragma once

#include "simulator/loader/image.h"

#include <span>
#include <string_view>

namespace sim::loader {

// Appends to image.exports, in the order of the tree. The segments must have been read. Throws LoadError.
void ReadExportTrie(Image &image, std::span<const uint8_t> trie, std::string_view file);

} // namespace sim::loader
