// Word boundaries: our own rule for what can be told from neighbours, the Unicode library's dictionaries for writing
// systems that put no blanks between words.
#include "simulator/macos/CoreServices/metadata/expression/word_boundaries.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace sim::macos::expression {

namespace {

struct CloseIterator {
    void operator()(UBreakIterator *iterator) const { ubrk_close(iterator); }
};

UBreakIterator *WordIterator() {
    // Opening one loads its rules; every comparison of a query would pay for that again.
    thread_local const std::unique_ptr<UBreakIterator, CloseIterator> iterator([] {
        UErrorCode status = U_ZERO_ERROR;
        UBreakIterator *opened = ubrk_open(UBRK_WORD, "", nullptr, 0, &status);
        if (U_FAILURE(status))
            throw std::runtime_error("the Unicode library has no rules for words");
        return opened;
    }());
    return iterator.get();
}

bool IsWordCharacter(UChar32 c) { return u_isalnum(c) || (U_GET_GC_MASK(c) & U_GC_M_MASK) != 0; }

bool BoundaryBetween(UChar32 left, UChar32 right) {
    return IsWordCharacter(left) != IsWordCharacter(right) || (u_islower(left) && u_isupper(right));
}

void AddDictionaryBoundaries(std::u16string_view text, std::vector<bool> &boundaries) {
    UErrorCode status = U_ZERO_ERROR;
    UBreakIterator *iterator = WordIterator();
    ubrk_setText(iterator, text.data(), static_cast<std::int32_t>(text.size()), &status);
    if (U_FAILURE(status))
        return;
    for (std::int32_t at = ubrk_first(iterator); at != UBRK_DONE; at = ubrk_next(iterator))
        boundaries[static_cast<std::size_t>(at)] = true;
    ubrk_setText(iterator, u"", 0, &status); // keeps no pointer to the text
}

} // namespace

std::vector<bool> WordBoundaries(std::u16string_view text) {
    std::vector<bool> boundaries(text.size() + 1, false);
    boundaries.front() = true;
    boundaries.back() = true;
    UChar32 left = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        UChar32 right;
        U16_NEXT(text.data(), at, text.size(), right);
        if (start > 0 && BoundaryBetween(left, right))
            boundaries[start] = true;
        left = right;
    }
    if (std::any_of(text.begin(), text.end(), [](char16_t unit) { return unit >= 0x80; }))
        AddDictionaryBoundaries(text, boundaries);
    return boundaries;
}

} // namespace sim::macos::expression
