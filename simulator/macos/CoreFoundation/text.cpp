// Reading and making strings from C++.
#include "simulator/macos/CoreFoundation/text.h"

#include "simulator/macos/CoreFoundation/constant_string.h"
#include "simulator/macos/CoreFoundation/string.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace sim::macos {

std::u16string Utf16(std::string_view utf8) {
    constexpr UChar32 kReplacement = 0xFFFD;
    std::u16string text;
    text.reserve(utf8.size());
    const auto length = static_cast<std::int32_t>(utf8.size());
    const auto *bytes = reinterpret_cast<const std::uint8_t *>(utf8.data());
    for (std::int32_t index = 0; index < length;) {
        UChar32 character;
        U8_NEXT(bytes, index, length, character);
        if (character < 0)
            character = kReplacement;
        if (U_IS_BMP(character)) {
            text += static_cast<char16_t>(character);
        } else {
            text += static_cast<char16_t>(U16_LEAD(character));
            text += static_cast<char16_t>(U16_TRAIL(character));
        }
    }
    return text;
}

std::string Utf8(std::u16string_view utf16) {
    constexpr UChar32 kReplacement = 0xFFFD;
    std::string text;
    text.reserve(utf16.size());
    for (std::size_t index = 0; index < utf16.size();) {
        UChar32 character;
        U16_NEXT(utf16.data(), index, utf16.size(), character);
        if (U_IS_SURROGATE(character))
            character = kReplacement;
        std::uint8_t bytes[U8_MAX_LENGTH];
        std::int32_t count = 0;
        U8_APPEND_UNSAFE(bytes, count, character);
        text.append(reinterpret_cast<const char *>(bytes), static_cast<std::size_t>(count));
    }
    return text;
}

CFRef<CFStringRef> MakeString(std::u16string_view utf16) {
    return CFRef<CFStringRef>::Adopt((new String(std::u16string(utf16)))->As<CFStringRef>());
}

CFRef<CFStringRef> MakeString(std::string_view utf8) { return MakeString(Utf16(utf8)); }

StringText::StringText(CFStringRef string, const char *caller) {
    if (string && IsConstantString(string)) {
        storage_ = ConstantString::Of(string).Characters();
        view_ = storage_;
    } else {
        view_ = Expect<String>(string, caller).Text();
    }
}

std::u16string CharactersOf(CFStringRef string, const char *caller) {
    return std::u16string(StringText(string, caller).View());
}

std::string Utf8Of(CFStringRef string, const char *caller) { return Utf8(StringText(string, caller).View()); }

std::string Quoted(std::u16string_view text) {
    constexpr std::size_t kLongest = 60;
    const bool cut = text.size() > kLongest;
    return "\"" + Utf8(text.substr(0, kLongest)) + (cut ? "...\"" : "\"");
}

} // namespace sim::macos
