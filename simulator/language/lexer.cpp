#include "simulator/language/lexer.h"

#include "simulator/host/ground/text.h"
#include "simulator/language/mistake.h"

#include <charconv>

namespace sim::language {

namespace {

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

bool IsLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') || character == '_';
}

bool IsWord(char character) { return IsLetter(character) || IsDigit(character); }

bool IsBlank(char character) { return character == ' ' || character == '\t' || character == '\r'; }

constexpr std::string_view kSymbols[] = {"<>", "<=", ">=", "+", "-", "*", "/", "\\",
                                         "^",  "=",  "<",  ">", "(", ")", ",", "."};

class Lexer {
public:
    explicit Lexer(const Source &source) : source_(source) {}

    std::vector<Token> All() {
        while (!AtEnd())
            Next();
        EndLine();
        Add(TokenKind::kEnd, position_);
        return std::move(tokens_);
    }

private:
    bool AtEnd() const { return position_ == source_.text.size(); }
    /// The character so far ahead, 0 beyond the end.
    char Peek(size_t ahead = 0) const {
        const size_t at = position_ + ahead;
        return at < source_.text.size() ? source_.text[at] : '\0';
    }
    bool BeginsWith(std::string_view text) const { return source_.text.compare(position_, text.size(), text) == 0; }

    Location Here(size_t length = 1) const {
        return {&source_, line_, static_cast<uint32_t>(position_ - lineStart_ + 1), static_cast<uint32_t>(length)};
    }

    /// A token that reaches up to the current position.
    Token &Add(TokenKind kind, size_t start) {
        Token token;
        token.kind = kind;
        token.text = source_.text.substr(start, position_ - start);
        token.word = token.text;
        token.where = {&source_, line_, static_cast<uint32_t>(start - lineStart_ + 1),
                       static_cast<uint32_t>(position_ - start)};
        return tokens_.emplace_back(std::move(token));
    }

    void EndLine() {
        if (!tokens_.empty() && tokens_.back().kind != TokenKind::kLineEnd)
            Add(TokenKind::kLineEnd, position_);
    }

    void StepOverLineEnd() {
        ++position_;
        ++line_;
        lineStart_ = position_;
    }

    void Next() {
        const char character = Peek();
        if (character == '\n') {
            EndLine();
            StepOverLineEnd();
        } else if (IsBlank(character)) {
            ++position_;
        } else if (character == '\'' || BeginsWith("//")) {
            SkipComment();
        } else if (character == '_' && ContinuesLine()) {
            SkipComment();
            if (!AtEnd())
                StepOverLineEnd();
        } else if (IsLetter(character)) {
            ReadName();
        } else if (IsDigit(character) || character == '&') {
            ReadNumber();
        } else if (character == '"') {
            ReadText();
        } else {
            ReadSymbol();
        }
    }

    void SkipComment() {
        while (!AtEnd() && Peek() != '\n')
            ++position_;
    }

    /// An underscore with nothing behind it on its line but a comment.
    bool ContinuesLine() const {
        size_t ahead = 1;
        while (IsBlank(Peek(ahead)))
            ++ahead;
        const char next = Peek(ahead);
        return next == '\n' || next == '\'' || position_ + ahead == source_.text.size();
    }

    void ReadName() {
        const size_t start = position_;
        while (IsWord(Peek()))
            ++position_;
        Token &token = Add(TokenKind::kName, start);
        token.word = host::LowerCase(token.text);
        if (token.word == "rem") {
            tokens_.pop_back();
            SkipComment();
        }
    }

    void ReadText() {
        const size_t start = position_++;
        std::string text;
        for (;; ++position_) {
            if (AtEnd() || Peek() == '\n')
                throw WrongProgram({&source_, line_, static_cast<uint32_t>(start - lineStart_ + 1), 1},
                                   "this text has no closing quotation mark");
            if (Peek() == '"' && Peek(1) == '"')
                ++position_;
            else if (Peek() == '"')
                break;
            text += Peek();
        }
        ++position_;
        Add(TokenKind::kText, start).value = std::move(text);
    }

    void ReadNumber() {
        const size_t start = position_;
        const host::Value value = Peek() == '&' ? NumberWithBase() : DecimalNumber();
        if (IsWord(Peek()))
            throw WrongProgram(Here(), "a number cannot be followed by a letter");
        Add(TokenKind::kNumber, start).value = value;
    }

    host::Value NumberWithBase() {
        int base = 0;
        switch (Peek(1)) {
        case 'h':
        case 'H':
        case 'c':
        case 'C':
            base = 16;
            break;
        case 'o':
        case 'O':
            base = 8;
            break;
        case 'b':
        case 'B':
            base = 2;
            break;
        default:
            throw WrongProgram(Here(), "expected a number: &h, &o or &b and digits");
        }
        const bool isColor = Peek(1) == 'c' || Peek(1) == 'C';
        uint64_t number = 0;
        const char *first = source_.text.data() + position_ + 2;
        const char *last = source_.text.data() + source_.text.size();
        const auto [end, error] = std::from_chars(first, last, number, base);
        if (error != std::errc())
            throw WrongProgram(Here(2), "expected digits, and not too many");
        position_ += static_cast<size_t>(end - first) + 2;
        if (isColor)
            return host::Color{static_cast<uint32_t>(number & 0xFFFFFF)};
        // All 32 bits may be written: &hFFFFFFFF is −1.
        if (number <= UINT32_MAX)
            return static_cast<int32_t>(static_cast<uint32_t>(number));
        return static_cast<int64_t>(number);
    }

    host::Value DecimalNumber() {
        size_t length = 0;
        while (IsDigit(Peek(length)))
            ++length;
        bool isWhole = true;
        if (Peek(length) == '.' && IsDigit(Peek(length + 1))) {
            isWhole = false;
            for (++length; IsDigit(Peek(length));)
                ++length;
        }
        if (const size_t sign = Peek(length + 1) == '-' || Peek(length + 1) == '+';
            (Peek(length) == 'e' || Peek(length) == 'E') && IsDigit(Peek(length + 1 + sign))) {
            isWhole = false;
            for (length += 1 + sign; IsDigit(Peek(length));)
                ++length;
        }
        const char *first = source_.text.data() + position_;
        int64_t whole = 0;
        double number = 0;
        const std::errc error = isWhole ? std::from_chars(first, first + length, whole).ec
                                        : std::from_chars(first, first + length, number).ec;
        if (error != std::errc())
            throw WrongProgram(Here(length), "this number is too large");
        position_ += length;
        if (!isWhole)
            return number;
        if (whole <= INT32_MAX)
            return static_cast<int32_t>(whole);
        return whole;
    }

    void ReadSymbol() {
        for (const std::string_view symbol : kSymbols) {
            if (!BeginsWith(symbol))
                continue;
            const size_t start = position_;
            position_ += symbol.size();
            Add(TokenKind::kSymbol, start);
            return;
        }
        throw WrongProgram(Here(), "this character means nothing here");
    }

    const Source &source_;
    size_t position_ = 0;
    uint32_t line_ = 1;
    size_t lineStart_ = 0;
    std::vector<Token> tokens_;
};

} // namespace

std::string Token::Describe() const {
    switch (kind) {
    case TokenKind::kLineEnd:
        return "the end of the line";
    case TokenKind::kEnd:
        return "the end of the program";
    default:
        return "'" + text + "'";
    }
}

std::vector<Token> Lex(const Source &source) { return Lexer(source).All(); }

} // namespace sim::language
