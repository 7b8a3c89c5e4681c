// The words of the query language and where each ends.
#include "simulator/macos/CoreServices/metadata/expression/lexer.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <optional>

namespace sim::macos::expression {

namespace {

struct Operator {
    std::u16string_view text;
    TokenKind kind;
};

/// Longer ones first, so that the first that fits is the right one.
constexpr Operator kOperators[] = {
    {u"==", TokenKind::kEqual},       {u"!=", TokenKind::kNotEqual},
    {u"<=", TokenKind::kLessOrEqual}, {u">=", TokenKind::kGreaterOrEqual},
    {u"&&", TokenKind::kAnd},         {u"||", TokenKind::kOr},
    {u"=", TokenKind::kEqual},        {u"<", TokenKind::kLess},
    {u">", TokenKind::kGreater},      {u"(", TokenKind::kOpen},
    {u")", TokenKind::kClose},        {u",", TokenKind::kComma},
};

UChar32 FirstCodePoint(std::u16string_view text) {
    if (U16_IS_LEAD(text[0]) && text.size() > 1 && U16_IS_TRAIL(text[1]))
        return U16_GET_SUPPLEMENTARY(text[0], text[1]);
    return text[0];
}

std::size_t UnitCount(UChar32 codePoint) { return U16_LENGTH(codePoint); }

bool StartsName(UChar32 c) { return c == u'_' || u_isalpha(c); }

/// Custom attributes may be named in reverse domain style.
bool ContinuesName(UChar32 c) { return c == u'_' || c == u'.' || c == u':' || u_isalnum(c); }

void AppendUtf8(std::string &text, UChar32 c) {
    const auto byte = [&text](UChar32 value) { text.push_back(static_cast<char>(value)); };
    if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xC0 | (c >> 6));
        byte(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        byte(0xE0 | (c >> 12));
        byte(0x80 | ((c >> 6) & 0x3F));
        byte(0x80 | (c & 0x3F));
    } else {
        byte(0xF0 | (c >> 18));
        byte(0x80 | ((c >> 12) & 0x3F));
        byte(0x80 | ((c >> 6) & 0x3F));
        byte(0x80 | (c & 0x3F));
    }
}

void AppendUnit(PatternPieces &pieces, char16_t unit) {
    if (pieces.empty() || pieces.back().kind != PatternPiece::Kind::kText)
        pieces.push_back({PatternPiece::Kind::kText, {}});
    pieces.back().text.push_back(unit);
}

void AppendWildcard(PatternPieces &pieces, PatternPiece::Kind kind) {
    const bool repeated = kind == PatternPiece::Kind::kAnyRun && !pieces.empty() && pieces.back().kind == kind;
    if (!repeated)
        pieces.push_back({kind, {}});
}

} // namespace

bool Modifiers::Add(char16_t letter) {
    switch (letter) {
    case u'c':
        return ignoreCase = true;
    case u'd':
        return ignoreDiacritics = true;
    case u'w':
    case u't':
        return wholeWords = true;
    default:
        return false;
    }
}

void Modifiers::Merge(Modifiers other) {
    ignoreCase |= other.ignoreCase;
    ignoreDiacritics |= other.ignoreDiacritics;
    wholeWords |= other.wholeWords;
}

Token Lexer::Next() {
    SkipBlanks();
    const std::size_t at = length_ - rest_.size();
    Token token = Word();
    token.at = at;
    return token;
}

Token Lexer::Word() {
    if (rest_.empty())
        return {};
    const char16_t first = rest_.front();
    if (first == u'"' || first == u'\'')
        return QuotedText();
    if (first == u'[')
        return BracketedModifiers();
    if (first == u'$')
        return Time();
    for (const Operator &known : kOperators) {
        if (rest_.starts_with(known.text))
            return Symbol(known.kind, known.text.size());
    }
    if (const std::size_t length = NumberLength(rest_)) {
        const auto number = ParseNumber(rest_.substr(0, length));
        if (!number)
            return Malformed("a number that can be held");
        Token token = Symbol(TokenKind::kNumber, length);
        token.number = *number;
        // 12px and 1.2.3 are not a number and something else.
        if (!rest_.empty() && ContinuesName(FirstCodePoint(rest_)))
            return Malformed("a number and nothing right behind it");
        return token;
    }
    if (StartsName(FirstCodePoint(rest_)))
        return Name();
    return Malformed();
}

void Lexer::SkipBlanks() {
    while (!rest_.empty() && (rest_.front() == u' ' || (rest_.front() >= u'\t' && rest_.front() <= u'\r')))
        rest_.remove_prefix(1);
}

Token Lexer::Symbol(TokenKind kind, std::size_t length) {
    rest_.remove_prefix(length);
    Token token;
    token.kind = kind;
    return token;
}

Token Lexer::Malformed(const char *missing) {
    rest_ = u"]"; // no word starts with it
    Token token;
    token.kind = TokenKind::kMalformed;
    token.missing = missing;
    return token;
}

Token Lexer::Name() {
    Token token;
    token.kind = TokenKind::kName;
    while (!rest_.empty()) {
        const UChar32 c = FirstCodePoint(rest_);
        if (!ContinuesName(c))
            break;
        AppendUtf8(token.name, c);
        rest_.remove_prefix(UnitCount(c));
    }
    return token;
}

Token Lexer::QuotedText() {
    Token token;
    token.kind = TokenKind::kQuotedText;
    const char16_t quote = rest_.front();
    std::size_t at = 1;
    for (; at < rest_.size() && rest_[at] != quote; ++at) {
        if (rest_[at] == u'\\' && at + 1 < rest_.size())
            AppendUnit(token.pieces, rest_[++at]);
        else if (rest_[at] == u'*')
            AppendWildcard(token.pieces, PatternPiece::Kind::kAnyRun);
        else if (rest_[at] == u'?')
            AppendWildcard(token.pieces, PatternPiece::Kind::kAnyOne);
        else
            AppendUnit(token.pieces, rest_[at]);
    }
    if (at >= rest_.size())
        return Malformed("a quote that ends the text");
    ++at;
    while (at < rest_.size() && token.modifiers.Add(rest_[at]))
        ++at;
    rest_.remove_prefix(at);
    if (!rest_.empty() && ContinuesName(FirstCodePoint(rest_)))
        return Malformed("a text with no letters but c, d, w and t right behind it");
    return token;
}

Token Lexer::BracketedModifiers() {
    Token token;
    token.kind = TokenKind::kModifiers;
    std::size_t at = 1;
    while (at < rest_.size() && token.modifiers.Add(rest_[at]))
        ++at;
    if (at == 1 || at >= rest_.size() || rest_[at] != u']')
        return Malformed("some of the letters c, d, w and t in brackets");
    rest_.remove_prefix(at + 1);
    return token;
}

Token Lexer::Time() {
    const auto time = ParseTimeFunction(rest_);
    if (!time)
        return Malformed("a moment, such as $time.today(-7)");
    Token token = Symbol(TokenKind::kTime, time->length);
    token.time = time->function;
    if (!rest_.empty() && ContinuesName(FirstCodePoint(rest_)))
        return Malformed("a moment and nothing right behind it");
    return token;
}

} // namespace sim::macos::expression
