// Matching keeps, piece by piece, the set of all positions that the pattern can have reached, so it never has to go
// back.
#include "simulator/macos/CoreServices/metadata/expression/text_pattern.h"

#include "simulator/macos/CoreServices/metadata/expression/folded_text.h"

#include <algorithm>

namespace sim::macos::expression {

namespace {

using Positions = std::vector<bool>;

Positions StartPositions(const FoldedText &text, bool wholeWords) {
    Positions reached(text.Units().size() + 1, false);
    reached[0] = true;
    if (wholeWords) {
        for (std::size_t at = 0; at < reached.size(); ++at)
            reached[at] = text.IsWordBoundary(at);
    }
    return reached;
}

Positions PastText(const FoldedText &text, const Positions &from, const std::u32string &expected) {
    Positions reached(from.size(), false);
    for (std::size_t at = 0; at + expected.size() < from.size(); ++at) {
        const std::size_t end = at + expected.size();
        const bool fits =
            from[at] && text.IsEdge(at) && text.IsEdge(end) && text.Units().compare(at, expected.size(), expected) == 0;
        if (fits)
            reached[end] = true;
    }
    return reached;
}

Positions PastAnyRun(const Positions &from) {
    Positions reached(from.size(), false);
    std::fill(std::find(from.begin(), from.end(), true) - from.begin() + reached.begin(), reached.end(), true);
    return reached;
}

Positions PastAnyOne(const FoldedText &text, const Positions &from) {
    Positions reached(from.size(), false);
    for (std::size_t at = 0; at + 1 < from.size(); ++at) {
        if (!from[at] || !text.IsCharacter(at))
            continue;
        std::size_t end = at + 1;
        while (!text.IsCharacter(end))
            ++end;
        reached[end] = true;
    }
    return reached;
}

} // namespace

TextPattern::TextPattern(const PatternPieces &pieces, Modifiers modifiers) : modifiers_(modifiers) {
    for (const PatternPiece &piece : pieces)
        pieces_.push_back({piece.kind, FoldedText(piece.text, modifiers).Units()});
}

bool TextPattern::Matches(std::u16string_view text) const {
    const FoldedText folded(text, modifiers_);
    const bool literal = pieces_.size() == 1 && pieces_[0].kind == PatternPiece::Kind::kText;
    if (literal && !modifiers_.wholeWords)
        return folded.Units() == pieces_[0].units;

    Positions reached = StartPositions(folded, modifiers_.wholeWords);
    for (const Piece &piece : pieces_) {
        switch (piece.kind) {
        case PatternPiece::Kind::kText:
            reached = PastText(folded, reached, piece.units);
            break;
        case PatternPiece::Kind::kAnyRun:
            reached = PastAnyRun(reached);
            break;
        case PatternPiece::Kind::kAnyOne:
            reached = PastAnyOne(folded, reached);
            break;
        }
    }
    if (!modifiers_.wholeWords)
        return reached.back();
    for (std::size_t at = 0; at < reached.size(); ++at) {
        if (reached[at] && folded.IsWordBoundary(at))
            return true;
    }
    return false;
}

} // namespace sim::macos::expression
