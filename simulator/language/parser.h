// From tokens to a syntax tree, by recursive descent: one function for each construct, which reads like the construct.
// That is why no parsing library is used: those that Debian has want the grammar in a notation of their own and give
// messages in terms of it, while here what was expected is said where it was not found.
#pragma once

#include "simulator/language/lexer.h"
#include "simulator/language/syntax_tree.h"

#include <initializer_list>

namespace sim::language {

/// Throws WrongProgram at the first mistake.
ProgramSyntax Parse(const Source &source);

class Parser {
public:
    explicit Parser(const Source &source) : tokens_(Lex(source)) {}

    ProgramSyntax Program();

private:
    // Tokens.
    const Token &Peek(size_t ahead = 0) const;
    bool At(std::string_view word) const { return Peek().Is(word); }
    bool At(std::string_view word, std::string_view next) const { return At(word) && Peek(1).Is(next); }
    bool AtAny(std::initializer_list<std::string_view> words) const;
    bool AtLineEnd() const { return Peek().kind == TokenKind::kLineEnd || Peek().kind == TokenKind::kEnd; }
    Token Take() { return tokens_[position_ < tokens_.size() - 1 ? position_++ : position_]; }
    bool Skip(std::string_view word);
    void Need(std::string_view word, std::string_view purpose = "");
    void NeedLineEnd();
    Identifier NeedName(std::string_view what);
    /// A name behind a dot, where words of the language are names like any other.
    Identifier NeedMemberName();
    [[noreturn]] void Expected(const std::string &what) const;
    Location Since(const Location &first) const { return Span(first, tokens_[position_ ? position_ - 1 : 0].where); }

    // Declarations.
    void Declaration(ProgramSyntax &program);
    ClassSyntax Class(bool isModule);
    void ClassMember(ClassSyntax &parsed);
    RoutineSyntax Routine(RoutineKind kind);
    std::vector<ParameterSyntax> Parameters();
    ParameterSyntax Parameter();
    TypeName Type();

    // Statements.
    Block BlockUntil(std::initializer_list<std::string_view> ends);
    /// One line, which can declare several variables.
    void StatementInto(Block &block);
    Statement OneStatement();
    /// Several variables can share a Dim.
    std::vector<DimStatement> Dims();
    DimStatement DimWithoutType();
    void TypeOfDims(std::vector<DimStatement> &dims);
    ConstStatement Const();
    IfStatement If();
    void IfOnOneLine(IfStatement &parsed);
    Block OneStatementBlock();
    ForStatement For();
    ForEachStatement ForEach();
    std::optional<TypeName> TypeOfLoopVariable();
    /// The rest of a loop that ends with "Next", which may repeat the variable's name.
    Block BlockUntilNext();
    LoopStatement While();
    LoopStatement DoLoop();
    ExpressionPointer LoopCondition();
    SelectStatement Select();
    SelectStatement::Test CaseTest();
    ExitStatement Exit(bool isContinue);
    TryStatement Try();
    HandlerStatement Handler(bool isRemoval);
    RedimStatement Redim();
    Statement AssignmentOrCall();
    void NeedEnd(std::string_view word);

    // Expressions.
    /// `inside` are those that the node holds.
    template <class Node>
    ExpressionPointer Make(const Location &first, Node node, std::initializer_list<const Expression *> inside = {}) {
        return Make(Expression{Since(first), 1, std::move(node)}, inside);
    }
    ExpressionPointer Make(Expression expression, std::initializer_list<const Expression *> inside);
    ExpressionPointer AnyExpression();
    ExpressionPointer Level(size_t level);
    ExpressionPointer Unary(UnaryOperator op, size_t level);
    ExpressionPointer Postfix();
    ExpressionPointer Primary();
    ExpressionPointer NewObject();
    Arguments ArgumentsInParentheses();
    Arguments ArgumentsUpToLineEnd();

    /// Counts how deep constructs are nested, so that no program can exhaust the stack.
    class Nesting {
    public:
        explicit Nesting(Parser &parser);
        ~Nesting() { --parser_.depth_; }
        Nesting(const Nesting &) = delete;
        Nesting &operator=(const Nesting &) = delete;

    private:
        Parser &parser_;
    };

    std::vector<Token> tokens_;
    size_t position_ = 0;
    int depth_ = 0;
};

} // namespace sim::language
