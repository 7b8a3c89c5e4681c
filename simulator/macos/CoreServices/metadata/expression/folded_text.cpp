// Folding by the Unicode library, with a short way for plain ASCII.
#include "simulator/macos/CoreServices/metadata/expression/folded_text.h"

#include "simulator/macos/CoreServices/metadata/expression/word_boundaries.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <stdexcept>

namespace sim::macos::expression {

namespace {

const UNormalizer2 *Composer() {
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2 *composer = unorm2_getNFCInstance(&status);
    if (U_FAILURE(status))
        throw std::runtime_error("the Unicode library has no normalization data");
    return composer;
}

/// Calls a function of the Unicode library that writes text into a buffer and returns the length it needs.
template <typename Write> std::u16string Written(std::size_t likelyLength, Write write) {
    std::u16string text(likelyLength, u'\0');
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length = write(text.data(), static_cast<std::int32_t>(text.size()), &status);
        const bool fits = static_cast<std::size_t>(length) <= text.size();
        text.resize(static_cast<std::size_t>(length));
        if (fits)
            return text;
    }
}

std::u16string Composed(std::u16string_view text) {
    return Written(text.size() + 8, [text](char16_t *buffer, std::int32_t capacity, UErrorCode *status) {
        return unorm2_normalize(Composer(), text.data(), static_cast<std::int32_t>(text.size()), buffer, capacity,
                                status);
    });
}

std::u16string CaseFolded(std::u16string_view text) {
    return Written(text.size() + 8, [text](char16_t *buffer, std::int32_t capacity, UErrorCode *status) {
        return u_strFoldCase(buffer, capacity, text.data(), static_cast<std::int32_t>(text.size()), U_FOLD_CASE_DEFAULT,
                             status);
    });
}

bool IsMark(UChar32 c) { return (U_GET_GC_MASK(c) & U_GC_M_MASK) != 0; }

/// Marks that change the sound of a letter in Indic scripts and kana (nukta, voicing, virama) belong to the letter;
/// other combining marks are diacritics.
bool IsDiacritic(UChar32 c) {
    constexpr int kNukta = 7, kVoicing = 8, kVirama = 9;
    const int combiningClass = u_getCombiningClass(c);
    return combiningClass != 0 && combiningClass != kNukta && combiningClass != kVoicing && combiningClass != kVirama;
}

std::size_t CharacterEnd(const std::u16string &text, std::size_t start) {
    std::size_t end = start;
    UChar32 c;
    U16_NEXT(text.data(), end, text.size(), c);
    while (end < text.size()) {
        std::size_t next = end;
        U16_NEXT(text.data(), next, text.size(), c);
        if (!IsMark(c))
            break;
        end = next;
    }
    return end;
}

} // namespace

FoldedText::FoldedText(std::u16string_view text, Modifiers modifiers) {
    const bool ascii = std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
    if (ascii)
        AppendAscii(text, modifiers);
    else
        AppendUnicode(text, modifiers);
}

void FoldedText::AppendAscii(std::u16string_view text, Modifiers modifiers) {
    units_.assign(text.begin(), text.end());
    if (modifiers.ignoreCase) {
        for (char32_t &unit : units_)
            unit = unit >= U'A' && unit <= U'Z' ? unit - U'A' + U'a' : unit;
    }
    marks_.assign(units_.size() + 1, kEdge | kCharacter);
    if (modifiers.wholeWords) {
        const std::vector<bool> boundaries = WordBoundaries(text);
        for (std::size_t at = 0; at < marks_.size(); ++at)
            marks_[at] = static_cast<std::uint8_t>(marks_[at] | (boundaries[at] ? kWordBoundary : 0));
    }
}

void FoldedText::AppendUnicode(std::u16string_view text, Modifiers modifiers) {
    const std::u16string composed = Composed(text);
    std::vector<bool> boundaries(composed.size() + 1, false);
    if (modifiers.wholeWords)
        boundaries = WordBoundaries(composed);

    std::uint8_t carried = 0; // the boundary in front of a character of which nothing is left
    for (std::size_t start = 0; start < composed.size();) {
        const std::size_t end = CharacterEnd(composed, start);
        const std::size_t before = units_.size();
        const std::uint8_t boundary = boundaries[start] ? kWordBoundary : carried;
        AppendCharacter(std::u16string_view(composed).substr(start, end - start),
                        static_cast<std::uint8_t>(kCharacter | boundary), modifiers);
        carried = units_.size() == before ? boundary : std::uint8_t{0};
        start = end;
    }
    marks_.push_back(kEdge | kCharacter | kWordBoundary);
}

void FoldedText::AppendCharacter(std::u16string_view character, std::uint8_t firstMark, Modifiers modifiers) {
    const std::u16string folded = modifiers.ignoreCase ? CaseFolded(character) : std::u16string(character);
    std::uint8_t pending = firstMark;
    for (std::size_t at = 0; at < folded.size();) {
        UChar32 c;
        U16_NEXT(folded.data(), at, folded.size(), c);
        char16_t decomposition[64];
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length = unorm2_getDecomposition(Composer(), c, decomposition, 64, &status);
        std::u16string_view parts(decomposition, length > 0 ? static_cast<std::size_t>(length) : 0);
        char16_t itself[2];
        if (length < 0) {
            std::size_t count = 0;
            U16_APPEND_UNSAFE(itself, count, c);
            parts = std::u16string_view(itself, count);
        }
        pending = static_cast<std::uint8_t>(pending | (IsMark(c) ? 0 : kEdge));
        for (std::size_t part = 0; part < parts.size();) {
            UChar32 unit;
            U16_NEXT(parts.data(), part, parts.size(), unit);
            if (modifiers.ignoreDiacritics && IsDiacritic(unit))
                continue;
            units_.push_back(static_cast<char32_t>(unit));
            marks_.push_back(pending);
            pending = 0;
        }
    }
}

} // namespace sim::macos::expression
