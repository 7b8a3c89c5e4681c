// Takes the text of a query apart into words.
#pragma once

#include "simulator/macos/CoreServices/metadata/expression/token.h"

#include <string_view>

namespace sim::macos::expression {

/// Reads one word after the other. The text must outlive the lexer.
class Lexer {
public:
    explicit Lexer(std::u16string_view text) : length_(text.size()), rest_(text) {}

    /// The next word; kEnd at the end and kMalformed at anything that is no word, then and ever after.
    Token Next();

private:
    void SkipBlanks();
    Token Word();
    Token Symbol(TokenKind kind, std::size_t length);
    Token Malformed(const char *missing = nullptr);
    Token Name();
    Token QuotedText();
    Token BracketedModifiers();
    Token Time();

    std::size_t length_;
    std::u16string_view rest_;
};

} // namespace sim::macos::expression
