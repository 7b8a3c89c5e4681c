#include "simulator/language/mistake.h"
#include "simulator/language/parser.h"

namespace sim::language {

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
    if (At("raiseevent"))
        throw WrongProgram(where, "events of a program's own are not known here; call a method instead");
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
