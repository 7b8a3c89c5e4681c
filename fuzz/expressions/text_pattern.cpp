// Patterns of plain text match exactly what a matcher by trial and error says they match.
//
// Input: a byte whose bits are the modifiers, then a line with the text and one with the pattern. Only letters, digits,
// blanks and punctuation of ASCII count; a star and a question mark are wildcards.
#include "simulator/macos/CoreServices/metadata/expression/text_pattern.h"
#include "fuzz/input.h"

#include <cctype>
#include <string>
#include <vector>

namespace {

using fuzz::Require;
using sim::macos::expression::Modifiers;
using sim::macos::expression::PatternPiece;
using sim::macos::expression::PatternPieces;
using sim::macos::expression::TextPattern;

std::string Plain(std::string_view bytes, size_t most) {
    std::string text;
    for (const char byte : bytes.substr(0, most))
        text += static_cast<char>(32 + (static_cast<unsigned char>(byte) % 95));
    return text;
}

bool SameCharacter(char one, char other, bool ignoreCase) {
    const auto folded = [&](char c) {
        return ignoreCase ? std::tolower(static_cast<unsigned char>(c)) : static_cast<unsigned char>(c);
    };
    return folded(one) == folded(other);
}

bool FitsWhole(std::string_view text, std::string_view pattern, bool ignoreCase) {
    if (pattern.empty())
        return text.empty();
    if (pattern[0] == '*')
        return FitsWhole(text, pattern.substr(1), ignoreCase) ||
               (!text.empty() && FitsWhole(text.substr(1), pattern, ignoreCase));
    if (text.empty() || (pattern[0] != '?' && !SameCharacter(text[0], pattern[0], ignoreCase)))
        return false;
    return FitsWhole(text.substr(1), pattern.substr(1), ignoreCase);
}

bool IsWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }

bool IsBoundary(std::string_view text, size_t at) {
    if (at == 0 || at == text.size())
        return true;
    const char left = text[at - 1];
    const char right = text[at];
    const bool rises =
        std::islower(static_cast<unsigned char>(left)) && std::isupper(static_cast<unsigned char>(right));
    return IsWordCharacter(left) != IsWordCharacter(right) || rises;
}

bool FitsWords(std::string_view text, std::string_view pattern, bool ignoreCase) {
    for (size_t start = 0; start <= text.size(); start++)
        for (size_t end = start; end <= text.size(); end++)
            if (IsBoundary(text, start) && IsBoundary(text, end) &&
                FitsWhole(text.substr(start, end - start), pattern, ignoreCase))
                return true;
    return false;
}

PatternPieces PiecesOf(std::string_view pattern) {
    PatternPieces pieces;
    for (const char c : pattern) {
        if (c == '*' || c == '?')
            pieces.push_back({c == '*' ? PatternPiece::Kind::kAnyRun : PatternPiece::Kind::kAnyOne, {}});
        else if (pieces.empty() || pieces.back().kind != PatternPiece::Kind::kText)
            pieces.push_back({PatternPiece::Kind::kText, std::u16string(1, static_cast<char16_t>(c))});
        else
            pieces.back().text.push_back(static_cast<char16_t>(c));
    }
    return pieces;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    fuzz::Input input(bytes, size);
    const auto bits = input.Take<uint8_t>();
    const Modifiers modifiers{
        .ignoreCase = (bits & 1) != 0, .ignoreDiacritics = (bits & 2) != 0, .wholeWords = (bits & 4) != 0};
    const size_t line = input.Rest().find('\n');
    const std::string text = Plain(input.Rest().substr(0, line), 14);
    const std::string pattern = line == std::string_view::npos ? "" : Plain(input.Rest().substr(line + 1), 8);
    const bool expected = modifiers.wholeWords ? FitsWords(text, pattern, modifiers.ignoreCase)
                                               : FitsWhole(text, pattern, modifiers.ignoreCase);
    Require(TextPattern(PiecesOf(pattern), modifiers).Matches(std::u16string(text.begin(), text.end())) == expected);
    return 0;
}
