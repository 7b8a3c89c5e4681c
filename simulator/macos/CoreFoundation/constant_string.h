// String objects that a compiler lays down for CFSTR: four words in the image's data, of which the first is the address
// of __CFConstantStringClassReference. They are strings like any other, but nobody counts their references.
#pragma once

#include <CoreFoundation/CFString.h>

#include <cstdint>
#include <string>

namespace sim::macos {

struct ConstantString {
    static constexpr std::uint32_t kEightBit = 0x7C8; ///< The text is ASCII.
    static constexpr std::uint32_t kUnicode = 0x7D0;  ///< The text is UTF-16 in host order.

    const int *classReference;
    std::uint32_t flags;
    const void *text;
    long length; ///< In units of the text.

    /// The reference must be a constant string's.
    static const ConstantString &Of(CFTypeRef cf) { return *static_cast<const ConstantString *>(cf); }

    std::u16string Characters() const;
    /// In double quotes, shortened when long.
    std::string Description() const;
};
static_assert(sizeof(ConstantString) == 16);

} // namespace sim::macos
