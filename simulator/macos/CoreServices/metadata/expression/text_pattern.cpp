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

/// In plain ASCII every unit is a character. Where a piece does not fit, the last run of anything is made longer; the
/// runs before it need not be, for what stands between was found at the nearest place.
bool TextPattern::MatchesASCII(std::u16string_view text) const {
    const auto fitsAt = [&](const std::u32string &units, std::size_t at) {
        return units.size() <= text.size() - at &&
               std::equal(units.begin(), units.end(), text.begin() + static_cast<std::ptrdiff_t>(at),
                          [this](char32_t wanted, char16_t unit) {
                              const bool isUpper = modifiers_.ignoreCase && unit >= u'A' && unit <= u'Z';
                              return wanted == (isUpper ? unit - U'A' + U'a' : char32_t{unit});
                          });
    };
    constexpr std::size_t kNone = ~std::size_t{0};
    std::size_t at = 0;
    std::size_t behindRun = kNone; // the piece that follows the last run
    std::size_t runEnd = 0;
    for (std::size_t next = 0; next < pieces_.size() || at < text.size();) {
        const Piece *piece = next < pieces_.size() ? &pieces_[next] : nullptr;
        if (piece && piece->kind == PatternPiece::Kind::kAnyRun) {
            behindRun = ++next;
            runEnd = at;
        } else if (piece && piece->kind == PatternPiece::Kind::kAnyOne && at < text.size()) {
            ++next;
            ++at;
        } else if (piece && piece->kind == PatternPiece::Kind::kText && fitsAt(piece->units, at)) {
            ++next;
            at += piece->units.size();
        } else if (behindRun == kNone || runEnd == text.size()) {
            return false;
        } else {
            next = behindRun;
            at = ++runEnd;
        }
    }
    return true;
}

bool TextPattern::Matches(std::u16string_view text) const {
    const bool isASCII = std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
    if (isASCII && !modifiers_.wholeWords)
        return MatchesASCII(text);
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
