// Text in the form in which two texts that mean the same are the same: canonically decomposed, and without case and
// diacritics where a comparison asks for that. Positions remember what was a character of the original and where words
// begin and end.
#pragma once

#include "simulator/macos/CoreServices/metadata/expression/pattern.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace sim::macos::expression {

class FoldedText {
public:
    FoldedText(std::u16string_view text, Modifiers modifiers);

    const std::u32string &Units() const { return units_; }

    // Positions lie between units: 0 is before the first one, Units().size() behind the last.

    /// Whether a match may begin or end there: not between a base and its marks.
    bool IsEdge(std::size_t position) const { return (marks_[position] & kEdge) != 0; }
    /// Whether a character of the original begins there. The two units that ß folds to are one character.
    bool IsCharacter(std::size_t position) const { return (marks_[position] & kCharacter) != 0; }
    /// Whether a word begins or ends there: at the ends of the text, between letters or digits and anything else, where
    /// lower case turns to upper, and where the writing system has a word end without a blank. Only known when the
    /// modifiers ask for whole words.
    bool IsWordBoundary(std::size_t position) const { return (marks_[position] & kWordBoundary) != 0; }

private:
    enum : std::uint8_t { kEdge = 1, kCharacter = 2, kWordBoundary = 4 };

    void AppendAscii(std::u16string_view text, Modifiers modifiers);
    void AppendUnicode(std::u16string_view text, Modifiers modifiers);
    void AppendCharacter(std::u16string_view character, std::uint8_t firstMark, Modifiers modifiers);

    std::u32string units_;
    std::vector<std::uint8_t> marks_; // one more than units
};

} // namespace sim::macos::expression
