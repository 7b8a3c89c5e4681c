// Statements that hold other statements.
#include "simulator/language/parser.h"

namespace sim::language {

namespace {

ExpressionPointer Negation(ExpressionPointer condition) {
    const Location where = condition->where;
    const int depth = condition->depth + 1;
    return std::make_unique<Expression>(
        Expression{where, depth, UnaryExpression{UnaryOperator::kNot, std::move(condition)}});
}

std::optional<BinaryOperator> ComparisonNamed(std::string_view symbol) {
    if (symbol == "=")
        return BinaryOperator::kEqual;
    if (symbol == "<>")
        return BinaryOperator::kUnequal;
    if (symbol == "<")
        return BinaryOperator::kLess;
    if (symbol == "<=")
        return BinaryOperator::kLessOrEqual;
    if (symbol == ">")
        return BinaryOperator::kGreater;
    if (symbol == ">=")
        return BinaryOperator::kGreaterOrEqual;
    return std::nullopt;
}

} // namespace

Block Parser::BlockUntil(std::initializer_list<std::string_view> ends) {
    const Nesting nesting(*this);
    Block block;
    while (!At("end") && !AtAny(ends) && Peek().kind != TokenKind::kEnd)
        StatementInto(block);
    return block;
}

IfStatement Parser::If() {
    IfStatement parsed;
    parsed.branches.push_back({AnyExpression(), {}});
    Need("then");
    if (!AtLineEnd()) {
        IfOnOneLine(parsed);
        return parsed;
    }
    NeedLineEnd();
    parsed.branches[0].block = BlockUntil({"else", "elseif"});
    while (Skip("elseif")) {
        ExpressionPointer condition = AnyExpression();
        Need("then");
        NeedLineEnd();
        parsed.branches.push_back({std::move(condition), BlockUntil({"else", "elseif"})});
    }
    if (Skip("else")) {
        NeedLineEnd();
        parsed.branches.push_back({nullptr, BlockUntil({})});
    }
    NeedEnd("if");
    return parsed;
}

void Parser::IfOnOneLine(IfStatement &parsed) {
    parsed.branches[0].block = OneStatementBlock();
    if (Skip("else"))
        parsed.branches.push_back({nullptr, OneStatementBlock()});
}

Block Parser::OneStatementBlock() {
    Block block;
    block.push_back(OneStatement());
    return block;
}

std::optional<TypeName> Parser::TypeOfLoopVariable() {
    if (!Skip("as"))
        return std::nullopt;
    return Type();
}

Block Parser::BlockUntilNext() {
    NeedLineEnd();
    Block block = BlockUntil({"next"});
    Need("next");
    if (!AtLineEnd())
        NeedName("the variable's name");
    return block;
}

ForStatement Parser::For() {
    ForStatement parsed;
    parsed.variable = NeedName("the variable's name");
    parsed.type = TypeOfLoopVariable();
    Need("=");
    parsed.first = AnyExpression();
    parsed.isDown = At("downto");
    if (!parsed.isDown && !At("to"))
        Expected("'To' or 'DownTo'");
    Take();
    parsed.last = AnyExpression();
    if (Skip("step"))
        parsed.step = AnyExpression();
    parsed.block = BlockUntilNext();
    return parsed;
}

ForEachStatement Parser::ForEach() {
    ForEachStatement parsed;
    parsed.variable = NeedName("the variable's name");
    parsed.type = TypeOfLoopVariable();
    Need("in");
    parsed.elements = AnyExpression();
    parsed.block = BlockUntilNext();
    return parsed;
}

LoopStatement Parser::While() {
    LoopStatement parsed;
    parsed.isWhile = true;
    parsed.before = AnyExpression();
    NeedLineEnd();
    parsed.block = BlockUntil({"wend"});
    Need("wend");
    return parsed;
}

LoopStatement Parser::DoLoop() {
    LoopStatement parsed;
    parsed.before = LoopCondition();
    NeedLineEnd();
    parsed.block = BlockUntil({"loop"});
    Need("loop");
    parsed.after = LoopCondition();
    return parsed;
}

ExpressionPointer Parser::LoopCondition() {
    if (Skip("while"))
        return AnyExpression();
    if (Skip("until"))
        return Negation(AnyExpression());
    return nullptr;
}

SelectStatement Parser::Select() {
    SelectStatement parsed;
    Need("case");
    parsed.subject = AnyExpression();
    NeedLineEnd();
    while (Skip("case")) {
        SelectStatement::Branch branch;
        if (!Skip("else")) {
            do
                branch.tests.push_back(CaseTest());
            while (Skip(","));
        }
        NeedLineEnd();
        branch.block = BlockUntil({"case"});
        parsed.branches.push_back(std::move(branch));
    }
    NeedEnd("select");
    return parsed;
}

SelectStatement::Test Parser::CaseTest() {
    SelectStatement::Test test;
    if (Skip("is")) {
        test.comparison = ComparisonNamed(Peek().word);
        if (!test.comparison)
            Expected("a comparison");
        Take();
    }
    test.value = AnyExpression();
    if (!test.comparison && Skip("to"))
        test.upTo = AnyExpression();
    return test;
}

TryStatement Parser::Try() {
    TryStatement parsed;
    NeedLineEnd();
    parsed.block = BlockUntil({"catch", "finally"});
    while (Skip("catch")) {
        TryStatement::Catch clause;
        if (!AtLineEnd())
            clause.variable = NeedName("the exception's name");
        if (clause.variable && Skip("as"))
            clause.type = Type();
        NeedLineEnd();
        clause.block = BlockUntil({"catch", "finally"});
        parsed.catches.push_back(std::move(clause));
    }
    if (Skip("finally")) {
        NeedLineEnd();
        parsed.finally = BlockUntil({});
    }
    if (parsed.catches.empty() && !parsed.finally)
        Expected("'Catch' or 'Finally'");
    NeedEnd("try");
    return parsed;
}

} // namespace sim::language
