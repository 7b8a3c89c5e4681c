#include "simulator/language/characters.h"

#include "simulator/host/ground/text.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>

namespace sim::language {

namespace {

template <class Change> std::u32string Changed(std::u32string characters, Change change) {
    for (char32_t &character : characters)
        character = static_cast<char32_t>(change(static_cast<UChar32>(character)));
    return characters;
}

bool IsAscii(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; });
}

} // namespace

std::u32string CharactersOf(std::string_view utf8) {
    if (IsAscii(utf8))
        return {utf8.begin(), utf8.end()};
    const std::u16string units = host::ToUTF16(utf8);
    std::u32string characters;
    for (size_t at = 0; at < units.size();) {
        UChar32 character = 0;
        U16_NEXT(units.data(), at, units.size(), character);
        characters += static_cast<char32_t>(character);
    }
    return characters;
}

std::string TextOf(std::u32string_view characters) {
    std::u16string units;
    for (const char32_t character : characters) {
        if (character < 0x10000) {
            units += static_cast<char16_t>(character);
        } else {
            units += static_cast<char16_t>(U16_LEAD(character));
            units += static_cast<char16_t>(U16_TRAIL(character));
        }
    }
    return host::ToUTF8(units);
}

std::u32string Folded(std::u32string characters) {
    return Changed(std::move(characters), [](UChar32 one) { return u_foldCase(one, U_FOLD_CASE_DEFAULT); });
}

std::u32string Upper(std::u32string characters) { return Changed(std::move(characters), u_toupper); }

std::u32string Lower(std::u32string characters) { return Changed(std::move(characters), u_tolower); }

bool IsBlank(char32_t character) { return u_isUWhiteSpace(static_cast<UChar32>(character)); }

int Compare(std::string_view left, std::string_view right) {
    return Folded(CharactersOf(left)).compare(Folded(CharactersOf(right)));
}

} // namespace sim::language
