// From characters to tokens. The language is one of lines, so the end of a line is a token too, unless the line ends
// with an underscore. Comments begin with ', // or Rem.
#pragma once

#include "simulator/host/entities/value.h"
#include "simulator/language/source.h"

#include <vector>

namespace sim::language {

enum class TokenKind { kName, kNumber, kText, kSymbol, kLineEnd, kEnd };

struct Token {
    TokenKind kind = TokenKind::kEnd;
    Location where;
    /// As written: a name, the characters of a symbol.
    std::string text;
    /// A name in lower case, by which names are told apart; otherwise the same as `text`.
    std::string word;
    /// What a number or a text in quotes means.
    host::Value value;

    bool Is(std::string_view wanted) const {
        return (kind == TokenKind::kName || kind == TokenKind::kSymbol) && word == wanted;
    }
    /// For messages: "the end of the line", "'Then'".
    std::string Describe() const;
};

/// Every token, the last of kind kEnd; empty lines leave nothing behind. Throws WrongProgram.
std::vector<Token> Lex(const Source &source);

} // namespace sim::language
