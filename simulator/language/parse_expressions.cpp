#include "simulator/language/mistake.h"
#include "simulator/language/parser.h"

#include <algorithm>

namespace sim::language {

namespace {

/// More than people write, and little enough for every later walk through the tree.
constexpr int kDeepestExpression = 200;

struct OperatorRow {
    std::string_view word;
    BinaryOperator op;
    size_t level;
};

constexpr size_t kNotLevel = 3;
constexpr size_t kComparisonLevel = 4;
constexpr size_t kMinusLevel = 7;
constexpr size_t kLevels = 8;

/// From the loosest to the tightest; level 3 is Not's, and what stands after a minus begins at 7.
constexpr OperatorRow kOperators[] = {
    {"or", BinaryOperator::kOr, 0},
    {"xor", BinaryOperator::kXor, 1},
    {"and", BinaryOperator::kAnd, 2},
    {"=", BinaryOperator::kEqual, kComparisonLevel},
    {"<>", BinaryOperator::kUnequal, kComparisonLevel},
    {"<", BinaryOperator::kLess, kComparisonLevel},
    {"<=", BinaryOperator::kLessOrEqual, kComparisonLevel},
    {">", BinaryOperator::kGreater, kComparisonLevel},
    {">=", BinaryOperator::kGreaterOrEqual, kComparisonLevel},
    {"is", BinaryOperator::kIs, kComparisonLevel},
    {"+", BinaryOperator::kAdd, 5},
    {"-", BinaryOperator::kSubtract, 5},
    {"*", BinaryOperator::kMultiply, 6},
    {"/", BinaryOperator::kDivide, 6},
    {"\\", BinaryOperator::kDivideWhole, 6},
    {"mod", BinaryOperator::kRemainder, 6},
    {"^", BinaryOperator::kPower, kMinusLevel},
};

const OperatorRow *FindOperator(const Token &token, size_t level) {
    const auto *found = std::find_if(std::begin(kOperators), std::end(kOperators),
                                     [&](const OperatorRow &row) { return row.level == level && token.Is(row.word); });
    return found == std::end(kOperators) ? nullptr : found;
}

int DeepestOf(const Arguments &arguments) {
    int deepest = 0;
    for (const ExpressionPointer &argument : arguments)
        deepest = std::max(deepest, argument->depth);
    return deepest;
}

} // namespace

ExpressionPointer Parser::Make(Expression expression, std::initializer_list<const Expression *> inside) {
    for (const Expression *part : inside)
        expression.depth = std::max(expression.depth, part->depth + 1);
    if (auto *call = std::get_if<CallExpression>(&expression.node))
        expression.depth = std::max(expression.depth, DeepestOf(call->arguments) + 1);
    if (auto *made = std::get_if<NewExpression>(&expression.node))
        expression.depth = std::max(expression.depth, DeepestOf(made->arguments) + 1);
    if (expression.depth > kDeepestExpression)
        throw WrongProgram(expression.where, "this expression is too long; divide it");
    return std::make_unique<Expression>(std::move(expression));
}

ExpressionPointer Parser::AnyExpression() {
    const Nesting nesting(*this);
    return Level(0);
}

ExpressionPointer Parser::Level(size_t level) {
    if (level == kNotLevel && At("not"))
        return Unary(UnaryOperator::kNot, kNotLevel);
    if (level == kMinusLevel && At("-"))
        return Unary(UnaryOperator::kMinus, kMinusLevel);
    if (level == kLevels)
        return Postfix();
    const Location first = Peek().where;
    ExpressionPointer left = Level(level + 1);
    for (;;) {
        if (level == kComparisonLevel && Skip("isa")) {
            const Expression *operand = left.get();
            IsAExpression node{std::move(left), NeedName("the name of a class")};
            left = Make(first, std::move(node), {operand});
            continue;
        }
        const OperatorRow *row = FindOperator(Peek(), level);
        if (!row)
            return left;
        Take();
        // The right side of a power may be negative.
        ExpressionPointer right = level == kMinusLevel && At("-") ? Level(level) : Level(level + 1);
        const Expression *leftPart = left.get(), *rightPart = right.get();
        left = Make(first, BinaryExpression{row->op, std::move(left), std::move(right)}, {leftPart, rightPart});
    }
}

ExpressionPointer Parser::Unary(UnaryOperator op, size_t level) {
    const Nesting nesting(*this);
    const Location first = Take().where;
    ExpressionPointer operand = Level(level);
    const Expression *part = operand.get();
    return Make(first, UnaryExpression{op, std::move(operand)}, {part});
}

ExpressionPointer Parser::Postfix() {
    const Location first = Peek().where;
    ExpressionPointer expression = Primary();
    for (;;) {
        const Expression *inside = expression.get();
        if (Skip(".")) {
            MemberExpression member{std::move(expression), NeedMemberName()};
            expression = Make(first, std::move(member), {inside});
        } else if (At("(")) {
            CallExpression call{std::move(expression), ArgumentsInParentheses()};
            expression = Make(first, std::move(call), {inside});
        } else {
            return expression;
        }
    }
}

ExpressionPointer Parser::Primary() {
    const Location first = Peek().where;
    if (Peek().kind == TokenKind::kNumber || Peek().kind == TokenKind::kText) {
        host::Value value = Take().value;
        return Make(first, Literal{std::move(value)});
    }
    if (Skip("(")) {
        ExpressionPointer inner = AnyExpression();
        Need(")");
        inner->where = Since(first);
        return inner;
    }
    if (Skip("nil"))
        return Make(first, Literal{nullptr});
    if (At("true") || At("false")) {
        const bool value = Take().word == "true";
        return Make(first, Literal{value});
    }
    if (Skip("self") || Skip("me"))
        return Make(first, SelfExpression{});
    if (Skip("super"))
        return Make(first, SelfExpression{true});
    if (At("new"))
        return NewObject();
    NameExpression name{NeedName("a value")};
    return Make(first, std::move(name));
}

ExpressionPointer Parser::NewObject() {
    const Location first = Peek().where;
    Need("new");
    NewExpression node{NeedName("the name of a class"), {}};
    if (At("("))
        node.arguments = ArgumentsInParentheses();
    return Make(first, std::move(node));
}

Arguments Parser::ArgumentsInParentheses() {
    Arguments arguments;
    Need("(");
    if (Skip(")"))
        return arguments;
    do
        arguments.push_back(AnyExpression());
    while (Skip(","));
    Need(")");
    return arguments;
}

Arguments Parser::ArgumentsUpToLineEnd() {
    Arguments arguments;
    do
        arguments.push_back(AnyExpression());
    while (Skip(","));
    return arguments;
}

} // namespace sim::language
