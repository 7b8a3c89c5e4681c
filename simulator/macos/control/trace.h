// Where something happened: a few return addresses, cheap to take (a walk along the frame pointers), put into words
// only when somebody prints them.
#pragma once

#include <array>
#include <string>

namespace sim::macos {

struct Trace {
    static constexpr std::size_t kDepth = 10;
    std::array<const void *, kDepth> frames{}; ///< Innermost first; null after the last.
};

/// The callers of the calling function.
Trace TakeTrace();

/// "CFStringCreateWithBytes < RBString2CFString+0x41 < ..."; the stand-in's own C++ functions at the inner end are left
/// out.
std::string ToText(const Trace &trace);

/// Names an address that the dynamic linker does not know, as one in an image of the stand-in loader; an empty answer
/// means it is not known there either.
using Symboliser = std::string (*)(const void *address);
void SetSymboliser(Symboliser symboliser);

} // namespace sim::macos
