// A recursive descent over the words of the lexer, one word ahead.
#include "simulator/macos/CoreServices/metadata/expression/parser.h"

#include "simulator/macos/CoreServices/metadata/expression/lexer.h"

#include <utility>

namespace sim::macos::expression {

namespace {

std::optional<Relation> OrderOf(TokenKind kind) {
    switch (kind) {
    case TokenKind::kLess:
        return Relation::kLess;
    case TokenKind::kLessOrEqual:
        return Relation::kLessOrEqual;
    case TokenKind::kGreater:
        return Relation::kGreater;
    case TokenKind::kGreaterOrEqual:
        return Relation::kGreaterOrEqual;
    default:
        return std::nullopt;
    }
}

bool IsStarAlone(const Token &token) {
    return token.kind == TokenKind::kQuotedText && token.pieces.size() == 1 &&
           token.pieces[0].kind == PatternPiece::Kind::kAnyRun;
}

std::optional<Number> SpelledNumber(const PatternPieces &pieces) {
    if (pieces.size() != 1 || pieces[0].kind != PatternPiece::Kind::kText)
        return std::nullopt;
    return ParseNumber(pieces[0].text);
}

bool HasOrder(const Operand &operand) {
    const auto *text = std::get_if<TextOperand>(&operand);
    return !text || text->number;
}

class Parser {
public:
    explicit Parser(std::u16string_view text) : lexer_(text) { Advance(); }

    std::optional<Node> Whole() {
        auto query = Joined(TokenKind::kOr);
        return query && At(TokenKind::kEnd) ? std::move(query) : std::nullopt;
    }

private:
    bool At(TokenKind kind) const { return token_.kind == kind; }

    Token Advance() { return std::exchange(token_, lexer_.Next()); }

    bool Skip(TokenKind kind) {
        const bool there = At(kind);
        if (there)
            Advance();
        return there;
    }

    /// A chain of parts with one junction between them, however long, is one node.
    std::optional<Node> Joined(TokenKind junction) {
        const bool all = junction == TokenKind::kAnd;
        std::vector<Node> parts;
        do {
            auto part = all ? Term() : Joined(TokenKind::kAnd);
            if (!part)
                return std::nullopt;
            parts.push_back(std::move(*part));
        } while (Skip(junction));
        if (parts.size() == 1)
            return std::move(parts.front());
        return Node{Junction{all, std::move(parts)}};
    }

    std::optional<Node> Term() {
        if (At(TokenKind::kOpen))
            return Parenthesized();
        if (!At(TokenKind::kName))
            return std::nullopt;
        std::string name = Advance().name;
        if (At(TokenKind::kOpen) && (name == "InRange" || name == "inRange"))
            return InRange();
        return Compared(std::move(name));
    }

    std::optional<Node> Parenthesized() {
        if (depth_ == kDeepestNesting)
            return std::nullopt;
        ++depth_;
        Advance();
        auto query = Joined(TokenKind::kOr);
        --depth_;
        return query && Skip(TokenKind::kClose) ? std::move(query) : std::nullopt;
    }

    std::optional<Node> InRange() {
        Advance();
        if (!At(TokenKind::kName))
            return std::nullopt;
        std::string attribute = Advance().name;
        if (!Skip(TokenKind::kComma))
            return std::nullopt;
        auto low = OrderedValue();
        if (!low || !Skip(TokenKind::kComma))
            return std::nullopt;
        auto high = OrderedValue();
        if (!high || !Skip(TokenKind::kClose))
            return std::nullopt;
        return Node{Range{std::move(attribute), std::move(*low), std::move(*high)}};
    }

    std::optional<Node> Compared(std::string attribute) {
        if (const auto order = OrderOf(token_.kind)) {
            Advance();
            auto operand = OrderedValue();
            if (!operand)
                return std::nullopt;
            return Node{Comparison{std::move(attribute), *order, false, std::move(*operand)}};
        }
        if (!At(TokenKind::kEqual) && !At(TokenKind::kNotEqual))
            return std::nullopt;
        const bool negated = Advance().kind == TokenKind::kNotEqual;
        Modifiers modifiers;
        if (At(TokenKind::kModifiers)) {
            modifiers = Advance().modifiers;
            if (!At(TokenKind::kQuotedText))
                return std::nullopt;
        }
        if (IsStarAlone(token_)) {
            Advance();
            return Node{Presence{std::move(attribute), negated}};
        }
        auto operand = Value(modifiers);
        if (!operand)
            return std::nullopt;
        return Node{Comparison{std::move(attribute), Relation::kEqual, negated, std::move(*operand)}};
    }

    std::optional<Operand> OrderedValue() {
        auto operand = Value({});
        return operand && HasOrder(*operand) ? std::move(operand) : std::nullopt;
    }

    std::optional<Operand> Value(Modifiers modifiers) {
        Token token = Advance();
        switch (token.kind) {
        case TokenKind::kQuotedText:
            modifiers.Merge(token.modifiers);
            return TextOperand{TextPattern(token.pieces, modifiers), SpelledNumber(token.pieces)};
        case TokenKind::kNumber:
            return token.number;
        case TokenKind::kTime:
            return token.time;
        default:
            return std::nullopt;
        }
    }

    Lexer lexer_;
    Token token_;
    int depth_ = 0;
};

} // namespace

std::optional<Node> Parse(std::u16string_view text) { return Parser(text).Whole(); }

} // namespace sim::macos::expression
