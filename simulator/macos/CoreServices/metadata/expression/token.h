// The words of the query language.
#pragma once

#include "simulator/macos/CoreServices/metadata/expression/number.h"
#include "simulator/macos/CoreServices/metadata/expression/pattern.h"
#include "simulator/macos/CoreServices/metadata/expression/time_function.h"

#include <string>

namespace sim::macos::expression {

enum class TokenKind {
    kEnd,
    kMalformed,
    kName,           // an attribute name, or InRange
    kQuotedText,     // "…" or '…', with the modifiers written behind it
    kNumber,         // 42, -1.5, 2e6
    kTime,           // $time.today(-1)
    kModifiers,      // [cd]
    kEqual,          // == or =
    kNotEqual,       // !=
    kLess,           // <
    kLessOrEqual,    // <=
    kGreater,        // >
    kGreaterOrEqual, // >=
    kAnd,            // &&
    kOr,             // ||
    kOpen,           // (
    kClose,          // )
    kComma,          // ,
};

/// Only the members of the token's kind are set.
struct Token {
    TokenKind kind = TokenKind::kEnd;
    std::size_t at = 0;            // of any kind: where it begins, in units of the text
    const char *missing = nullptr; // of a malformed one: what would make it a word, where that can be said
    std::string name;
    PatternPieces pieces;
    Modifiers modifiers;
    Number number;
    TimeFunction time;
};

} // namespace sim::macos::expression
