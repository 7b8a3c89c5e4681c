// The text side of a comparison as it was written: literal text and wildcards, and the modifiers that say how literally
// to take it. What it means is in text_pattern.h.
#pragma once

#include <string>
#include <vector>

namespace sim::macos::expression {

/// How a quoted text is compared. Written behind the text ("paris"cd) or behind the operator (==[cd] "paris").
struct Modifiers {
    bool ignoreCase = false;       // c
    bool ignoreDiacritics = false; // d
    bool wholeWords = false;       // w, and t (tokenized), which asks for the same here

    /// Adds the modifier of one letter. False when there is no such letter.
    bool Add(char16_t letter);
    void Merge(Modifiers other);
    friend bool operator==(const Modifiers &, const Modifiers &) = default;
};

struct PatternPiece {
    enum class Kind {
        kText,   // the text itself
        kAnyRun, // *: any characters, also none
        kAnyOne, // ?: one character
    };
    Kind kind = Kind::kText;
    std::u16string text;

    friend bool operator==(const PatternPiece &, const PatternPiece &) = default;
};

using PatternPieces = std::vector<PatternPiece>;

} // namespace sim::macos::expression
