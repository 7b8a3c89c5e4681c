// Takes imports away from a shared library before it is loaded, to play a system that lacks them.
#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <string_view>

namespace sim::loader {

// Makes the undefined weak symbols of `names` in the i386 library `bytes` ask for names that nobody has: their own
// without the first letter. Throws LoadError when the file is malformed, or imports such a name strongly.
void HideImports(std::span<uint8_t> bytes, const std::set<std::string> &names, std::string_view file);

} // namespace sim::loader
