#include "simulator/language/checker.h"
#include "simulator/language/conversions.h"
#include "simulator/language/operators.h"

namespace sim::language {

namespace {

Type TypeOfLiteral(const host::Value &value) {
    if (value.Is<bool>())
        return {Kind::kBoolean};
    if (value.Is<int32_t>())
        return {Kind::kInteger};
    if (value.Is<int64_t>())
        return {Kind::kInt64};
    if (value.Is<double>())
        return {Kind::kDouble};
    if (value.Is<host::Color>())
        return {Kind::kColor};
    return {value.IsNil() ? Kind::kNil : Kind::kString};
}

host::Value Negative(const host::Value &value, const Location &where) {
    if (value.Is<int32_t>())
        return static_cast<int32_t>(-int64_t{value.As<int32_t>()});
    if (value.Is<int64_t>())
        return -value.As<int64_t>();
    if (value.Is<double>())
        return -value.As<double>();
    throw WrongProgram(where, "expected a number behind the minus");
}

} // namespace

Checked Checker::CheckExpression(const Expression &expression) {
    return std::visit([&](const auto &node) { return Check(node, expression); }, expression.node);
}

Checked Checker::CheckValue(const Expression &expression) {
    Checked checked = CheckExpression(expression);
    if (checked.type.kind == Kind::kNothing)
        throw WrongProgram(expression.where, "expected a value, found a call that gives nothing");
    return checked;
}

Evaluation Checker::CheckAs(const Expression &expression, const Type &type) {
    // What an array's elements are to be can show in where it is put.
    if (const auto *call = std::get_if<CallExpression>(&expression.node); call && type.isArray)
        if (const auto *name = std::get_if<NameExpression>(&call->callee->node); name && name->name.word == "array")
            return ArrayOf(call->arguments, type.Element(), expression.where).value;
    return ConvertedTo(CheckValue(expression), type);
}

Evaluation Checker::ConvertedTo(const Checked &checked, const Type &type) {
    const std::optional<int> distance = Distance(checked.type, type);
    if (!distance) {
        const bool isNumberForText = type.Is(Kind::kString) && checked.type.IsNumber();
        throw WrongProgram(checked.where, "expected " + type.Name() + ", found " + checked.type.Name() +
                                              (isNumberForText ? " (Str makes a text of a number)" : ""));
    }
    const bool isObject = checked.type.kind == Kind::kObject && !checked.type.isArray;
    if (*distance == 0 || type.Is(Kind::kVariant) || isObject)
        return checked.value;
    return [value = checked.value, type, where = checked.where](Frame &frame) {
        return Converted(frame.execution, value(frame), type, where);
    };
}

Checked Checker::Check(const Literal &literal, const Expression &whole) {
    return {TypeOfLiteral(literal.value), [value = literal.value](Frame &) { return value; }, whole.where};
}

Checked Checker::Check(const NameExpression &name, const Expression &whole) {
    return Named(name.name, nullptr, whole.where);
}

Checked Checker::Check(const SelfExpression &self, const Expression &whole) {
    if (!context_.hasSelf)
        throw WrongProgram(whole.where, "there is no Self outside the methods of a class");
    if (self.isSuper)
        throw WrongProgram(whole.where, "expected '.' and a method behind Super");
    return {{Kind::kObject, false, context_.itsClass}, Self(), whole.where};
}

Checked Checker::Check(const MemberExpression &member, const Expression &whole) {
    return MemberOf(member, nullptr, whole.where);
}

Checked Checker::Check(const CallExpression &call, const Expression &whole) {
    if (const auto *name = std::get_if<NameExpression>(&call.callee->node))
        return Named(name->name, &call.arguments, whole.where);
    if (const auto *member = std::get_if<MemberExpression>(&call.callee->node))
        return MemberOf(*member, &call.arguments, whole.where);
    return WithArguments(CheckValue(*call.callee), &call.arguments, whole.where);
}

Checked Checker::Check(const NewExpression &made, const Expression &whole) {
    const ClassSymbol &itsClass = ResolveClass(made.className);
    if (!itsClass.hostClass)
        throw WrongProgram(made.className.where, itsClass.name + " has no instances");
    const std::vector<const Routine *> constructors = FindRoutines(itsClass, "Constructor");
    const Type type{Kind::kObject, false, &itsClass};
    const Evaluation instance = [&itsClass, where = whole.where](Frame &frame) -> host::Value {
        host::Object object = frame.execution.New(itsClass);
        frame.execution.PassOnRaised(where);
        return object;
    };
    if (constructors.empty()) {
        if (!made.arguments.empty())
            throw WrongProgram(made.arguments[0]->where, itsClass.name + " has no constructor that takes arguments");
        return {type, instance, whole.where};
    }
    // The constructor is called with the new object in a variable of its own.
    const size_t slot = NewSlot();
    const Evaluation self = [slot](Frame &frame) { return frame.variables[slot]; };
    const Evaluation construct = CallRoutine(constructors, self, &made.arguments, whole.where).value;
    return {type,
            [instance, construct, slot](Frame &frame) {
                // Constructing can lead here again, so the object is at hand there only while it is constructed.
                host::Value object = instance(frame);
                frame.variables[slot] = object;
                construct(frame);
                frame.variables[slot] = {};
                return object;
            },
            whole.where};
}

Checked Checker::Check(const UnaryExpression &unary, const Expression &whole) {
    if (unary.op == UnaryOperator::kNot) {
        const Evaluation operand = CheckAs(*unary.operand, {Kind::kBoolean});
        return {{Kind::kBoolean}, [operand](Frame &frame) { return !operand(frame).As<bool>(); }, whole.where};
    }
    const Checked zero{{Kind::kInteger}, [](Frame &) { return int32_t{0}; }, whole.where};
    const Checked operand = CheckValue(*unary.operand);
    if (operand.type.Is(Kind::kDouble) || operand.type.Is(Kind::kSingle)) {
        const Evaluation number = ConvertedTo(operand, {Kind::kDouble});
        return {{Kind::kDouble}, [number](Frame &frame) { return -number(frame).As<double>(); }, whole.where};
    }
    return Operate(BinaryOperator::kSubtract, zero, operand, whole.where);
}

Checked Checker::Check(const BinaryExpression &binary, const Expression &whole) {
    const Checked left = CheckValue(*binary.left), right = CheckValue(*binary.right);
    const bool isLogical = binary.op == BinaryOperator::kAnd || binary.op == BinaryOperator::kOr;
    if (!isLogical || (left.type.IsNumber() && right.type.IsNumber()))
        return Operate(binary.op, left, right, whole.where);
    const Evaluation first = ConvertedTo(left, {Kind::kBoolean}), second = ConvertedTo(right, {Kind::kBoolean});
    // The right side is looked at only where it can matter.
    const bool decides = binary.op == BinaryOperator::kOr;
    return {{Kind::kBoolean},
            [first, second, decides](Frame &frame) -> host::Value {
                return first(frame).As<bool>() == decides ? host::Value(decides) : second(frame);
            },
            whole.where};
}

Checked Checker::Operate(BinaryOperator op, const Checked &left, const Checked &right, const Location &where) {
    const std::optional<Operation> operation = FindOperation(op, left.type, right.type);
    if (!operation)
        throw WrongProgram(where, std::string(SpellingOf(op)) + " does not go with " + left.type.Name() + " and " +
                                      right.type.Name());
    const Evaluation first = ConvertedTo(left, operation->operands), second = ConvertedTo(right, operation->operands);
    return {operation->result,
            [first, second, apply = operation->apply, where](Frame &frame) {
                const host::Value leftValue = first(frame);
                return apply(frame.execution, leftValue, second(frame), where);
            },
            where};
}

Checked Checker::Check(const IsAExpression &test, const Expression &whole) {
    const ClassSymbol &itsClass = ResolveClass(test.className);
    const Checked operand = CheckValue(*test.operand);
    if (!operand.type.Is(Kind::kObject) && !operand.type.Is(Kind::kVariant))
        throw WrongProgram(operand.where, "expected an object, found " + operand.type.Name());
    return {{Kind::kBoolean},
            [value = operand.value, &itsClass](Frame &frame) {
                const host::Value object = value(frame);
                const ClassSymbol *found =
                    object.Is<host::Object>() ? frame.execution.ClassOf(object.As<host::Object>()) : nullptr;
                return found && found->IsA(itsClass);
            },
            whole.where};
}

host::Value Checker::ConstantValue(const Expression &expression) {
    if (const auto *literal = std::get_if<Literal>(&expression.node))
        return literal->value;
    if (const auto *unary = std::get_if<UnaryExpression>(&expression.node); unary && unary->op == UnaryOperator::kMinus)
        return Negative(ConstantValue(*unary->operand), expression.where);
    if (const auto *binary = std::get_if<BinaryExpression>(&expression.node);
        binary && binary->op == BinaryOperator::kAdd) {
        const host::Value left = ConstantValue(*binary->left), right = ConstantValue(*binary->right);
        if (left.Is<std::string>() && right.Is<std::string>())
            return left.As<std::string>() + right.As<std::string>();
    }
    if (const auto *name = std::get_if<NameExpression>(&expression.node)) {
        bool isGlobal = false;
        if (const Variable *variable = FindVariable(name->name.word, isGlobal); variable && variable->constant)
            return *variable->constant;
        if (const ConstantSymbol *constant =
                context_.itsClass ? FindConstant(*context_.itsClass, name->name.word) : nullptr)
            return constant->value;
    }
    if (const auto *member = std::get_if<MemberExpression>(&expression.node))
        if (const ClassSymbol *itsClass = ClassMeant(*member->object))
            if (const ConstantSymbol *constant = FindConstant(*itsClass, member->name.word))
                return constant->value;
    throw WrongProgram(expression.where, "expected a constant: a number, a text, True, False or Nil");
}

Type Checker::ResolveType(const TypeName &name) {
    if (const std::optional<Kind> kind = KindNamed(name.name.word))
        return {*kind, name.isArray, nullptr};
    return {Kind::kObject, name.isArray, &ResolveClass(name.name)};
}

const ClassSymbol &Checker::ResolveClass(const Identifier &name) {
    const ClassSymbol *itsClass = symbols_.Find(name.word);
    if (!itsClass || itsClass->isModule)
        throw WrongProgram(name.where, "there is no type " + name.text);
    return *itsClass;
}

} // namespace sim::language
