// Strict UTF-8.
#include "simulator/macos/CoreFoundation/utf8.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace sim::macos {

std::optional<std::u16string> DecodeUtf8(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    const auto *units = reinterpret_cast<const std::uint8_t *>(bytes.data());
    const auto length = static_cast<std::int32_t>(bytes.size());
    for (std::int32_t index = 0; index < length;) {
        UChar32 character;
        U8_NEXT(units, index, length, character);
        if (character < 0)
            return std::nullopt;
        if (U_IS_BMP(character)) {
            text += static_cast<char16_t>(character);
        } else {
            text += static_cast<char16_t>(U16_LEAD(character));
            text += static_cast<char16_t>(U16_TRAIL(character));
        }
    }
    return text;
}

std::optional<std::string> EncodeUtf8(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t index = 0; index < text.size();) {
        UChar32 character;
        U16_NEXT(text.data(), index, text.size(), character);
        if (U_IS_SURROGATE(character))
            return std::nullopt;
        std::uint8_t units[U8_MAX_LENGTH];
        std::int32_t count = 0;
        U8_APPEND_UNSAFE(units, count, character);
        bytes.append(reinterpret_cast<const char *>(units), static_cast<std::size_t>(count));
    }
    return bytes;
}

} // namespace sim::macos
