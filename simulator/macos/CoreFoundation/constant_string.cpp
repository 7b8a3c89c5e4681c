// Telling a compiler's string from an object, and reading it.
#include "simulator/macos/CoreFoundation/constant_string.h"

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/text.h"

#include <cstring>

// A program may hold a copy of this variable that takes the place of the library's own for everyone but those who ask
// the library by name. Both addresses mark a constant string.
extern "C" {
__attribute__((visibility("hidden"))) int constantStringClassOfThisLibrary[24];
extern int __CFConstantStringClassReference[24] __attribute__((alias("constantStringClassOfThisLibrary")));
}

namespace sim::macos {

bool IsConstantString(CFTypeRef cf) {
    const int *first = nullptr;
    if (!IsReadable(cf))
        return false;
    std::memcpy(&first, cf, sizeof first);
    return first == constantStringClassOfThisLibrary || first == __CFConstantStringClassReference;
}

std::u16string ConstantString::Characters() const {
    const auto count = static_cast<std::size_t>(length);
    if (flags == kEightBit) {
        const char *bytes = static_cast<const char *>(text);
        return std::u16string(bytes, bytes + count);
    }
    if (flags != kUnicode)
        Stop("a constant string has unknown flags");
    std::u16string characters(count, u'\0');
    std::memcpy(characters.data(), text, count * sizeof(char16_t));
    return characters;
}

std::string ConstantString::Description() const { return Quoted(Characters()); }

} // namespace sim::macos
