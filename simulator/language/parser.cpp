// Tokens, and the declarations of a program.
#include "simulator/language/parser.h"

#include "simulator/language/mistake.h"

#include <algorithm>

namespace sim::language {

namespace {

constexpr int kDeepest = 100;

/// Words that mean something by themselves and so cannot name anything.
constexpr std::string_view kReserved[] = {
    "and",    "as",   "byref",    "byval",  "case",   "catch",  "class", "const",  "continue", "dim",  "do",
    "downto", "each", "else",     "elseif", "end",    "event",  "exit",  "false",  "finally",  "for",  "function",
    "if",     "in",   "inherits", "is",     "isa",    "loop",   "mod",   "module", "new",      "next", "nil",
    "not",    "or",   "raise",    "redim",  "return", "select", "self",  "shared", "step",     "sub",  "super",
    "then",   "to",   "true",     "try",    "until",  "wend",   "while", "xor",
};

bool IsReserved(std::string_view word) {
    return std::find(std::begin(kReserved), std::end(kReserved), word) != std::end(kReserved);
}

Identifier IdentifierFrom(const Token &token) { return {token.text, token.word, token.where}; }

} // namespace

Parser::Nesting::Nesting(Parser &parser) : parser_(parser) {
    if (++parser_.depth_ > kDeepest)
        throw WrongProgram(parser_.Peek().where, "this is nested too deeply");
}

const Token &Parser::Peek(size_t ahead) const { return tokens_[std::min(position_ + ahead, tokens_.size() - 1)]; }

bool Parser::AtAny(std::initializer_list<std::string_view> words) const {
    return std::any_of(words.begin(), words.end(), [this](std::string_view word) { return At(word); });
}

bool Parser::Skip(std::string_view word) {
    if (!At(word))
        return false;
    Take();
    return true;
}

void Parser::Need(std::string_view word, std::string_view purpose) {
    if (Skip(word))
        return;
    std::string wanted(word);
    if (word[0] >= 'a' && word[0] <= 'z')
        wanted[0] = static_cast<char>(wanted[0] - 'a' + 'A');
    Expected("'" + wanted + "'" + std::string(purpose));
}

void Parser::NeedLineEnd() {
    if (!AtLineEnd())
        Expected("the end of the line");
    Take();
}

Identifier Parser::NeedName(std::string_view what) {
    if (Peek().kind != TokenKind::kName || IsReserved(Peek().word))
        Expected(std::string(what));
    return IdentifierFrom(Take());
}

Identifier Parser::NeedMemberName() {
    if (Peek().kind != TokenKind::kName)
        Expected("a name");
    return IdentifierFrom(Take());
}

void Parser::Expected(const std::string &what) const {
    throw WrongProgram(Peek().where, "expected " + what + ", found " + Peek().Describe());
}

void Parser::NeedEnd(std::string_view word) {
    Need("end");
    Need(word);
}

ProgramSyntax Parser::Program() {
    ProgramSyntax program;
    while (Peek().kind != TokenKind::kEnd)
        Declaration(program);
    return program;
}

void Parser::Declaration(ProgramSyntax &program) {
    if (At("class") || At("module")) {
        const bool isModule = Take().word == "module";
        program.classes.push_back(Class(isModule));
    } else if (At("sub") || At("function")) {
        program.routines.push_back(Routine(Take().word == "sub" ? RoutineKind::kSub : RoutineKind::kFunction));
    } else if (Peek().kind == TokenKind::kLineEnd) {
        Take();
    } else {
        StatementInto(program.statements);
    }
}

ClassSyntax Parser::Class(bool isModule) {
    ClassSyntax parsed;
    parsed.isModule = isModule;
    parsed.name = NeedName(isModule ? "the module's name" : "the class's name");
    NeedLineEnd();
    if (!isModule && Skip("inherits")) {
        parsed.super = NeedName("the name of a class");
        NeedLineEnd();
    }
    while (!At("end"))
        ClassMember(parsed);
    NeedEnd(isModule ? "module" : "class");
    NeedLineEnd();
    return parsed;
}

void Parser::ClassMember(ClassSyntax &parsed) {
    bool isShared = parsed.isModule;
    while (AtAny({"shared", "public", "private", "protected", "global"}))
        isShared |= Take().word == "shared";
    if (AtAny({"sub", "function", "event"})) {
        const std::string word = Take().word;
        parsed.routines.push_back(Routine(word == "sub"        ? RoutineKind::kSub
                                          : word == "function" ? RoutineKind::kFunction
                                                               : RoutineKind::kEvent));
        parsed.routines.back().isShared = isShared;
    } else if (Skip("const")) {
        parsed.constants.push_back(Const());
        NeedLineEnd();
    } else if (Skip("dim") || Skip("property") || Peek().kind == TokenKind::kName) {
        for (DimStatement &declaration : Dims())
            parsed.properties.push_back({std::move(declaration), isShared});
        NeedLineEnd();
    } else {
        Expected("a declaration, or 'End'");
    }
}

RoutineSyntax Parser::Routine(RoutineKind kind) {
    static constexpr const char *kWords[] = {"sub", "function", "event"};
    RoutineSyntax parsed;
    parsed.kind = kind;
    parsed.name = NeedName("a name");
    if (At("("))
        parsed.parameters = Parameters();
    if (kind == RoutineKind::kFunction || (kind == RoutineKind::kEvent && At("as"))) {
        Need("as", " and the type of the result");
        parsed.result = Type();
    }
    NeedLineEnd();
    parsed.block = BlockUntil({});
    NeedEnd(kWords[static_cast<int>(kind)]);
    NeedLineEnd();
    return parsed;
}

std::vector<ParameterSyntax> Parser::Parameters() {
    std::vector<ParameterSyntax> parameters;
    Need("(");
    if (Skip(")"))
        return parameters;
    do
        parameters.push_back(Parameter());
    while (Skip(","));
    Need(")");
    return parameters;
}

ParameterSyntax Parser::Parameter() {
    ParameterSyntax parameter;
    parameter.isByReference = Skip("byref");
    if (!parameter.isByReference && !Skip("byval"))
        parameter.assigns = Skip("assigns");
    parameter.name = NeedName("the parameter's name");
    bool isArray = false;
    if (Skip("(")) {
        Need(")");
        isArray = true;
    }
    Need("as", " and a type");
    parameter.type = Type();
    parameter.type.isArray |= isArray;
    if (!parameter.isByReference && Skip("="))
        parameter.preset = AnyExpression();
    return parameter;
}

TypeName Parser::Type() {
    TypeName type;
    type.name = NeedName("a type");
    if (At("(", ")")) {
        Take();
        Take();
        type.isArray = true;
    }
    return type;
}

ProgramSyntax Parse(const Source &source) { return Parser(source).Program(); }

} // namespace sim::language
