#include "simulator/host/declarations/declaration.h"

#include "simulator/host/ground/stop.h"
#include "simulator/host/ground/text.h"

#include <charconv>

namespace sim::host {

namespace {

struct TypeRow {
    std::string_view name;
    TypeKind kind;
};

constexpr TypeRow kTypes[] = {
    {"boolean", TypeKind::kBoolean}, {"integer", TypeKind::kInt32}, {"int32", TypeKind::kInt32},
    {"uint32", TypeKind::kUInt32},   {"int64", TypeKind::kInt64},   {"single", TypeKind::kSingle},
    {"double", TypeKind::kDouble},   {"color", TypeKind::kColor},   {"string", TypeKind::kString},
    {"variant", TypeKind::kVariant},
};

bool IsBlank(char character) { return character == ' ' || character == '\t'; }

bool IsWord(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '_';
}

/// Reads a declaration from left to right. Every step that does not find what it needs stops the host, quoting the
/// declaration.
class Reader {
public:
    explicit Reader(std::string_view text) : text_(text) {}

    bool AtEnd() {
        SkipBlanks();
        return position_ == text_.size();
    }

    bool Take(char character) {
        SkipBlanks();
        if (position_ == text_.size() || text_[position_] != character)
            return false;
        ++position_;
        return true;
    }

    void Need(char character) {
        if (!Take(character))
            Fail(std::string("needs '") + character + "'");
    }

    std::string NeedWord() {
        SkipBlanks();
        size_t start = position_;
        while (position_ < text_.size() && IsWord(text_[position_]))
            ++position_;
        if (position_ == start)
            Fail("needs a name");
        return std::string(text_.substr(start, position_ - start));
    }

    bool TakeWord(std::string_view word) {
        size_t start = position_;
        SkipBlanks();
        size_t end = position_;
        while (end < text_.size() && IsWord(text_[end]))
            ++end;
        if (!EqualIgnoringCase(text_.substr(position_, end - position_), word)) {
            position_ = start;
            return false;
        }
        position_ = end;
        return true;
    }

    /// A number, True, False, nil, or a text in quotes up to the last quote.
    Value NeedLiteral() {
        SkipBlanks();
        if (Take('"')) {
            size_t end = text_.rfind('"');
            if (end < position_)
                Fail("has a text without its end");
            std::string text(text_.substr(position_, end - position_));
            position_ = end + 1;
            return text;
        }
        if (TakeWord("true"))
            return true;
        if (TakeWord("false"))
            return false;
        if (TakeWord("nil"))
            return nullptr;
        return NeedNumber();
    }

    [[noreturn]] void Fail(const std::string &how) {
        Stop("the declaration \"" + std::string(text_) + "\" " + how + " at " + std::to_string(position_));
    }

private:
    void SkipBlanks() {
        while (position_ < text_.size() && IsBlank(text_[position_]))
            ++position_;
    }

    Value NeedNumber() {
        int32_t number = 0;
        const char *start = text_.data() + position_;
        auto [end, error] = std::from_chars(start, text_.data() + text_.size(), number);
        if (error != std::errc())
            Fail("needs a number");
        position_ += static_cast<size_t>(end - start);
        return number;
    }

    std::string_view text_;
    size_t position_ = 0;
};

Type ReadType(Reader &reader) {
    Type type;
    type.name = reader.NeedWord();
    type.kind = TypeKind::kObject;
    for (const TypeRow &row : kTypes)
        if (EqualIgnoringCase(row.name, type.name))
            type.kind = row.kind;
    if (reader.Take('(')) {
        reader.Need(')');
        type.isArray = true;
    }
    return type;
}

Parameter ReadParameter(Reader &reader) {
    Parameter parameter;
    parameter.assigns = reader.TakeWord("assigns");
    if (reader.TakeWord("byref"))
        reader.Fail("passes a parameter by reference, which is not modelled,");
    parameter.name = reader.NeedWord();
    bool isArray = reader.Take('(');
    if (isArray)
        reader.Need(')');
    if (!reader.TakeWord("as"))
        reader.Fail("needs 'as'");
    parameter.type = ReadType(reader);
    parameter.type.isArray = parameter.type.isArray || isArray;
    if (reader.Take('='))
        parameter.preset = reader.NeedLiteral();
    return parameter;
}

} // namespace

size_t Type::Words() const {
    if (kind == TypeKind::kNone)
        return 0;
    return !isArray && (kind == TypeKind::kInt64 || kind == TypeKind::kDouble) ? 2 : 1;
}

size_t Declaration::RequiredArguments() const {
    size_t required = parameters.size();
    while (required > 0 && parameters[required - 1].preset)
        --required;
    return required;
}

size_t Declaration::Words() const {
    size_t words = 0;
    for (const Parameter &parameter : parameters)
        words += parameter.type.Words();
    return words;
}

Type ParseType(std::string_view text) {
    Reader reader(text);
    Type type = ReadType(reader);
    if (!reader.AtEnd())
        reader.Fail("goes on after its type");
    return type;
}

Declaration ParseDeclaration(std::string_view text) {
    Reader reader(text);
    Declaration declaration;
    declaration.text = text;
    declaration.name = reader.NeedWord();
    if (reader.Take('(') && !reader.Take(')')) {
        do
            declaration.parameters.push_back(ReadParameter(reader));
        while (reader.Take(','));
        reader.Need(')');
    }
    if (reader.TakeWord("as"))
        declaration.result = ReadType(reader);
    if (!reader.AtEnd())
        reader.Fail("goes on after its end");
    return declaration;
}

ConstantDeclaration ParseConstant(std::string_view text) {
    Reader reader(text);
    ConstantDeclaration constant;
    constant.name = reader.NeedWord();
    reader.Need('=');
    constant.value = reader.NeedLiteral();
    if (!reader.AtEnd())
        reader.Fail("goes on after its value");
    return constant;
}

bool SameDeclaration(std::string_view left, std::string_view right) {
    auto essence = [](std::string_view text) {
        // A blank matters only between two words.
        std::string kept;
        bool blank = false;
        for (char character : text) {
            if (IsBlank(character)) {
                blank = true;
                continue;
            }
            if (blank && !kept.empty() && IsWord(kept.back()) && IsWord(character))
                kept += ' ';
            blank = false;
            kept += character;
        }
        return LowerCase(kept);
    };
    return left == right || essence(left) == essence(right);
}

} // namespace sim::host
