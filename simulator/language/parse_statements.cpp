#include "simulator/language/mistake.h"
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

void Parser::StatementInto(Block &block) {
    if (Skip("dim")) {
        for (DimStatement &declaration : Dims()) {
            const Location where = declaration.name.where;
            block.push_back({where, std::move(declaration)});
        }
    } else {
        block.push_back(OneStatement());
    }
    NeedLineEnd();
}

Statement Parser::OneStatement() {
    const Nesting nesting(*this);
    const Location where = Peek().where;
    if (Skip("if"))
        return {where, If()};
    if (Skip("for")) {
        if (Skip("each"))
            return {where, ForEach()};
        return {where, For()};
    }
    if (Skip("while"))
        return {where, While()};
    if (Skip("do"))
        return {where, DoLoop()};
    if (Skip("select"))
        return {where, Select()};
    if (Skip("try"))
        return {where, Try()};
    if (Skip("const"))
        return {where, Const()};
    if (Skip("exit"))
        return {where, Exit(false)};
    if (Skip("continue"))
        return {where, Exit(true)};
    if (Skip("return"))
        return {where, ReturnStatement{AtLineEnd() || At("else") ? nullptr : AnyExpression()}};
    if (Skip("raise"))
        return {where, RaiseStatement{AnyExpression()}};
    if (Skip("redim"))
        return {where, Redim()};
    if (At("print") && !Peek(1).Is("=") && !Peek(1).Is(".")) {
        Take();
        return {where, PrintStatement{AtLineEnd() || At("else") ? nullptr : AnyExpression()}};
    }
    if (At("addhandler") || At("removehandler")) {
        const bool isRemoval = Take().word == "removehandler";
        return {where, Handler(isRemoval)};
    }
    return AssignmentOrCall();
}

Statement Parser::AssignmentOrCall() {
    const Location where = Peek().where;
    const bool isCall = Skip("call");
    if (Peek().kind != TokenKind::kName && !At("("))
        Expected("a statement");
    ExpressionPointer target = Postfix();
    if (!isCall && Skip("="))
        return {where, AssignStatement{std::move(target), AnyExpression()}};
    // A call's arguments may stand without parentheses.
    if (!AtLineEnd() && !At("else") && !std::holds_alternative<CallExpression>(target->node)) {
        const Expression *callee = target.get();
        CallExpression call{std::move(target), ArgumentsUpToLineEnd()};
        target = Make(where, std::move(call), {callee});
    }
    return {where, CallStatement{std::move(target)}};
}

std::vector<DimStatement> Parser::Dims() {
    std::vector<DimStatement> dims;
    do
        dims.push_back(DimWithoutType());
    while (Skip(","));
    TypeOfDims(dims);
    return dims;
}

DimStatement Parser::DimWithoutType() {
    DimStatement dim;
    dim.name = NeedName("the variable's name");
    if (Skip("(")) {
        dim.type.isArray = true;
        if (!At(")"))
            dim.upperBound = AnyExpression();
        Need(")");
    }
    return dim;
}

void Parser::TypeOfDims(std::vector<DimStatement> &dims) {
    Need("as", " and a type");
    const Location where = Peek().where;
    if (dims.size() == 1 && !dims[0].type.isArray && At("new")) {
        dims[0].value = NewObject();
        dims[0].type.name = std::get<NewExpression>(dims[0].value->node).className;
        return;
    }
    const TypeName type = Type();
    for (DimStatement &dim : dims) {
        dim.type.name = type.name;
        dim.type.isArray |= type.isArray;
    }
    if (!Skip("="))
        return;
    if (dims.size() != 1 || dims[0].upperBound)
        throw WrongProgram(where, "a value goes with one variable, and with no upper bound");
    dims[0].value = AnyExpression();
}

ConstStatement Parser::Const() {
    ConstStatement parsed;
    parsed.name = NeedName("the constant's name");
    if (Skip("as"))
        Type();
    Need("=");
    parsed.value = AnyExpression();
    return parsed;
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
    NeedLineEnd();
    parsed.block = BlockUntil({"next"});
    Need("next");
    if (!AtLineEnd())
        NeedName("the variable's name");
    return parsed;
}

ForEachStatement Parser::ForEach() {
    ForEachStatement parsed;
    parsed.variable = NeedName("the variable's name");
    parsed.type = TypeOfLoopVariable();
    Need("in");
    parsed.elements = AnyExpression();
    NeedLineEnd();
    parsed.block = BlockUntil({"next"});
    Need("next");
    if (!AtLineEnd())
        NeedName("the variable's name");
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

ExitStatement Parser::Exit(bool isContinue) {
    ExitStatement parsed;
    parsed.isContinue = isContinue;
    if (Skip("for"))
        parsed.loop = LoopKind::kFor;
    else if (Skip("while"))
        parsed.loop = LoopKind::kWhile;
    else if (Skip("do"))
        parsed.loop = LoopKind::kDo;
    return parsed;
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

HandlerStatement Parser::Handler(bool isRemoval) {
    HandlerStatement parsed;
    parsed.isRemoval = isRemoval;
    ExpressionPointer event = Postfix();
    auto *member = std::get_if<MemberExpression>(&event->node);
    if (!member)
        throw WrongProgram(event->where, "expected an object and its event");
    parsed.event = member->name;
    parsed.object = std::move(member->object);
    Need(",");
    if (!Skip("weakaddressof"))
        Need("addressof");
    parsed.routine = Postfix();
    return parsed;
}

RedimStatement Parser::Redim() {
    ExpressionPointer array = Postfix();
    auto *call = std::get_if<CallExpression>(&array->node);
    if (!call || call->arguments.size() != 1)
        throw WrongProgram(array->where, "expected an array and its new upper bound in parentheses");
    return {std::move(call->callee), std::move(call->arguments[0])};
}

} // namespace sim::language
