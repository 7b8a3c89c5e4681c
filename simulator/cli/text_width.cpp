#include "simulator/cli/text_width.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace sim::cli {
namespace {

constexpr const char *kEllipsis = "…";
constexpr UChar32 kEmojiPresentation = 0xFE0F;

struct Character {
    std::string_view text;
    size_t width;
};

bool TakesNoColumn(UChar32 point) {
    switch (u_charType(point)) {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_FORMAT_CHAR:
    case U_CONTROL_CHAR:
        return true;
    default:
        return false;
    }
}

bool TakesTwoColumns(UChar32 point) {
    const int width = u_getIntPropertyValue(point, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH || point == kEmojiPresentation ||
           u_hasBinaryProperty(point, UCHAR_REGIONAL_INDICATOR);
}

size_t WidthOfCharacter(std::string_view character) {
    size_t width = 0;
    const auto length = static_cast<int32_t>(character.size());
    for (int32_t i = 0; i < length;) {
        UChar32 point;
        U8_NEXT_OR_FFFD(character.data(), i, length, point);
        if (TakesTwoColumns(point))
            return 2;
        if (!TakesNoColumn(point))
            width = 1;
    }
    return width;
}

bool IsASCII(std::string_view text) {
    return std::ranges::all_of(text, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

UBreakIterator *CharacterIterator() {
    struct Closer {
        void operator()(UBreakIterator *iterator) const { ubrk_close(iterator); }
    };
    static const std::unique_ptr<UBreakIterator, Closer> iterator([] {
        UErrorCode status = U_ZERO_ERROR;
        return ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status);
    }());
    return iterator.get();
}

// The text split into what readers see as characters.
std::vector<Character> CharactersOf(std::string_view text) {
    std::vector<Character> characters;
    UErrorCode status = U_ZERO_ERROR;
    UText view = UTEXT_INITIALIZER;
    utext_openUTF8(&view, text.data(), static_cast<int64_t>(text.size()), &status);
    UBreakIterator *iterator = CharacterIterator();
    ubrk_setUText(iterator, &view, &status);
    int32_t begin = ubrk_first(iterator);
    for (int32_t end = ubrk_next(iterator); end != UBRK_DONE; end = ubrk_next(iterator)) {
        const std::string_view character = text.substr(static_cast<size_t>(begin), static_cast<size_t>(end - begin));
        characters.push_back({character, WidthOfCharacter(character)});
        begin = end;
    }
    utext_close(&view);
    return characters;
}

// As many characters from the front as take no more than `width` columns.
std::string_view Front(const std::vector<Character> &characters, size_t width) {
    const char *begin = characters.front().text.data();
    const char *end = begin;
    for (const Character &character : characters) {
        if (character.width > width)
            break;
        width -= character.width;
        end = character.text.data() + character.text.size();
    }
    return {begin, end};
}

// As many characters from the back as take no more than `width` columns.
std::string_view Back(const std::vector<Character> &characters, size_t width) {
    const char *end = characters.back().text.data() + characters.back().text.size();
    const char *begin = end;
    for (auto character = characters.rbegin(); character != characters.rend() && character->width <= width;
         ++character) {
        width -= character->width;
        begin = character->text.data();
    }
    return {begin, end};
}

bool TurnsDirection(UChar32 point) {
    return (point >= 0x202A && point <= 0x202E) || (point >= 0x2066 && point <= 0x2069) || point == 0x200E ||
           point == 0x200F;
}

void AppendCode(std::string &text, const char *format, UChar32 point) {
    char code[16];
    std::snprintf(code, sizeof code, format, static_cast<unsigned>(point));
    text += code;
}

void AppendPrintable(std::string &text, UChar32 point) {
    if (point == '\n')
        text += "\\n";
    else if (point == '\t')
        text += "\\t";
    else if (point == '\r')
        text += "\\r";
    else if (u_charType(point) == U_CONTROL_CHAR)
        AppendCode(text, "\\x%02x", point);
    else if (TurnsDirection(point) || point == 0x2028 || point == 0x2029)
        AppendCode(text, "\\u%04x", point);
    else {
        char bytes[U8_MAX_LENGTH];
        int32_t length = 0;
        U8_APPEND_UNSAFE(bytes, length, point);
        text.append(bytes, static_cast<size_t>(length));
    }
}

} // namespace

size_t WidthOf(std::string_view text) {
    if (IsASCII(text))
        return text.size();
    size_t width = 0;
    for (const Character &character : CharactersOf(text))
        width += character.width;
    return width;
}

std::string Fitted(std::string_view text, size_t width, Cut cut) {
    if (WidthOf(text) <= width)
        return std::string(text);
    if (width == 0)
        return {};
    const std::vector<Character> characters = CharactersOf(text);
    const size_t back = cut == Cut::kMiddle ? (width - 1) * 2 / 3 : 0;
    std::string fitted(Front(characters, width - 1 - back));
    fitted += kEllipsis;
    fitted += Back(characters, back);
    return fitted;
}

std::string PaddedRight(std::string text, size_t width) {
    const size_t taken = WidthOf(text);
    return taken < width ? text.append(width - taken, ' ') : text;
}

std::string PaddedLeft(const std::string &text, size_t width) {
    const size_t taken = WidthOf(text);
    return taken < width ? std::string(width - taken, ' ') + text : text;
}

std::string Printable(std::string_view text) {
    std::string printable;
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t i = 0; i < length;) {
        const int32_t begin = i;
        UChar32 point;
        U8_NEXT(text.data(), i, length, point);
        if (point >= 0) {
            AppendPrintable(printable, point);
            continue;
        }
        for (const char byte : text.substr(static_cast<size_t>(begin), static_cast<size_t>(i - begin)))
            AppendCode(printable, "\\x%02x", static_cast<unsigned char>(byte));
    }
    return printable;
}

} // namespace sim::cli
