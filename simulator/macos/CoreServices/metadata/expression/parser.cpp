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
        if (query && !At(TokenKind::kEnd))
            return Fail("&&, || or the end");
        return query;
    }

    const Mistake &FirstMistake() const { return mistake_; }

private:
    /// Where the query ends that could be read. Only the first mistake counts; the others follow from it.
    std::nullopt_t FailAt(const Token &token, std::string_view expected) {
        if (mistake_.expected.empty())
            mistake_ = {token.at, token.missing ? token.missing : expected};
        return std::nullopt;
    }
    std::nullopt_t Fail(std::string_view expected) { return FailAt(token_, expected); }

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
            return Fail("the name of an attribute, or (");
        std::string name = Advance().name;
        if (At(TokenKind::kOpen) && (name == "InRange" || name == "inRange"))
            return InRange();
        return Compared(std::move(name));
    }

    std::optional<Node> Parenthesized() {
        if (depth_ == kDeepestNesting)
            return Fail("fewer parentheses");
        ++depth_;
        Advance();
        auto query = Joined(TokenKind::kOr);
        --depth_;
        if (query && !Skip(TokenKind::kClose))
            return Fail("&&, || or )");
        return query;
    }

    std::optional<Node> InRange() {
        Advance();
        if (!At(TokenKind::kName))
            return Fail("the name of an attribute");
        std::string attribute = Advance().name;
        if (!Skip(TokenKind::kComma))
            return Fail("a comma");
        auto low = OrderedValue();
        if (!low || !Skip(TokenKind::kComma))
            return Fail("a comma");
        auto high = OrderedValue();
        if (!high || !Skip(TokenKind::kClose))
            return Fail(")");
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
            return Fail("a comparison: ==, !=, <, <=, > or >=");
        const bool negated = Advance().kind == TokenKind::kNotEqual;
        Modifiers modifiers;
        if (At(TokenKind::kModifiers)) {
            modifiers = Advance().modifiers;
            if (!At(TokenKind::kQuotedText))
                return Fail("a text in quotes");
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
        const Token first = token_;
        auto operand = Value({});
        if (operand && !HasOrder(*operand))
            return FailAt(first, "a number or a moment, which have an order");
        return operand;
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
            return FailAt(token, "a text in quotes, a number, or a moment such as $time.today(-7)");
        }
    }

    Lexer lexer_;
    Token token_;
    Mistake mistake_;
    int depth_ = 0;
};

} // namespace

std::optional<Node> Parse(std::u16string_view text, Mistake *mistake) {
    Parser parser(text);
    auto query = parser.Whole();
    if (!query && mistake)
        *mistake = parser.FirstMistake();
    return query;
}

} // namespace sim::macos::expression
