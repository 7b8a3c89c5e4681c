// A quoted text made ready to be compared with the texts of many files.
#pragma once

#include "simulator/macos/CoreServices/metadata/expression/pattern.h"

#include <string>
#include <string_view>
#include <vector>

namespace sim::macos::expression {

class TextPattern {
public:
    TextPattern(const PatternPieces &pieces, Modifiers modifiers);

    /// Whether the pattern fits the whole text, or any run of whole words in it when the modifiers ask for whole words.
    /// Takes time in proportion to the length of the text times that of the pattern, whatever the wildcards.
    bool Matches(std::u16string_view text) const;

private:
    bool MatchesASCII(std::u16string_view text) const;

    struct Piece {
        PatternPiece::Kind kind;
        std::u32string units;
    };

    std::vector<Piece> pieces_;
    Modifiers modifiers_;
};

} // namespace sim::macos::expression
