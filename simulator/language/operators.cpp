#include "simulator/language/operators.h"

#include "simulator/host/classes/builtin.h"
#include "simulator/host/entities/variant_entity.h"
#include "simulator/language/characters.h"
#include "simulator/language/dates.h"

#include <cmath>
#include <compare>

namespace sim::language {

namespace {

using host::Value;

/// What a program makes in a few steps must not exhaust the process.
constexpr size_t kLongestText = 1 << 23;

/// Whole numbers wrap around, as they do in a compiled program.
template <class T> T Sum(T left, T right, BinaryOperator op) {
    T result;
    if (op == BinaryOperator::kAdd)
        (void)__builtin_add_overflow(left, right, &result);
    else if (op == BinaryOperator::kSubtract)
        (void)__builtin_sub_overflow(left, right, &result);
    else
        (void)__builtin_mul_overflow(left, right, &result);
    return result;
}

template <> double Sum(double left, double right, BinaryOperator op) {
    return op == BinaryOperator::kAdd ? left + right : op == BinaryOperator::kSubtract ? left - right : left * right;
}

template <class T, BinaryOperator op>
Value Arithmetic(Execution &, const Value &left, const Value &right, const Location &) {
    return Sum<T>(left.As<T>(), right.As<T>(), op);
}

template <class T, BinaryOperator op>
Value Division(Execution &execution, const Value &left, const Value &right, const Location &where) {
    const T divisor = right.As<T>();
    if (divisor == 0)
        execution.Raise("RuntimeException", "a whole number cannot be divided by zero", where);
    // The one quotient that the type cannot hold wraps around.
    if (divisor == -1)
        return op == BinaryOperator::kRemainder ? T{0} : Sum<T>(0, left.As<T>(), BinaryOperator::kSubtract);
    return op == BinaryOperator::kRemainder ? left.As<T>() % divisor : left.As<T>() / divisor;
}

Value Quotient(Execution &, const Value &left, const Value &right, const Location &) {
    return left.As<double>() / right.As<double>();
}

Value Power(Execution &, const Value &left, const Value &right, const Location &) {
    return std::pow(left.As<double>(), right.As<double>());
}

Value Joined(Execution &execution, const Value &left, const Value &right, const Location &where) {
    std::string text = left.As<std::string>();
    const std::string more = right.As<std::string>();
    if (text.size() + more.size() > kLongestText)
        execution.Raise("OutOfMemoryException", "no text can be that long", where);
    return text += more;
}

template <BinaryOperator op> bool Holds(std::partial_ordering order) {
    if constexpr (op == BinaryOperator::kEqual)
        return std::is_eq(order);
    else if constexpr (op == BinaryOperator::kUnequal)
        return std::is_neq(order);
    else if constexpr (op == BinaryOperator::kLess)
        return std::is_lt(order);
    else if constexpr (op == BinaryOperator::kLessOrEqual)
        return std::is_lteq(order);
    else if constexpr (op == BinaryOperator::kGreater)
        return std::is_gt(order);
    else
        return std::is_gteq(order);
}

/// NaN is unequal to everything and has no place in any order.
template <class T, BinaryOperator op>
Value CompareNumbers(Execution &, const Value &left, const Value &right, const Location &) {
    return Holds<op>(left.As<T>() <=> right.As<T>());
}

template <BinaryOperator op> Value CompareTexts(Execution &, const Value &left, const Value &right, const Location &) {
    return Holds<op>(Compare(left.As<std::string>(), right.As<std::string>()) <=> 0);
}

const host::DateInstance *DateIn(const Value &value) {
    return value.Is<host::Object>() ? dynamic_cast<const host::DateInstance *>(value.As<host::Object>().Get())
                                    : nullptr;
}

template <BinaryOperator op>
Value CompareDates(Execution &execution, const Value &left, const Value &right, const Location &where) {
    const host::DateInstance *leftDate = DateIn(left), *rightDate = DateIn(right);
    if (leftDate && rightDate)
        return Holds<op>(TotalSeconds(leftDate->fields) <=> TotalSeconds(rightDate->fields));
    if constexpr (op == BinaryOperator::kEqual || op == BinaryOperator::kUnequal)
        return (left.IsNil() && right.IsNil()) == (op == BinaryOperator::kEqual);
    execution.Raise("NilObjectException", "there is no date to compare, only Nil", where);
}

template <BinaryOperator op> Value CompareValues(Execution &, const Value &left, const Value &right, const Location &) {
    return AreEqual(left, right) == (op == BinaryOperator::kEqual);
}

template <BinaryOperator op>
Value CompareIdentity(Execution &, const Value &left, const Value &right, const Location &) {
    return (left == right) == (op == BinaryOperator::kEqual);
}

template <bool isAnd> Value Bits(Execution &, const Value &left, const Value &right, const Location &) {
    const int64_t a = left.As<int64_t>(), b = right.As<int64_t>();
    return isAnd ? a & b : a | b;
}

Value BitsXor(Execution &, const Value &left, const Value &right, const Location &) {
    return left.As<int64_t>() ^ right.As<int64_t>();
}

Value TruthXor(Execution &, const Value &left, const Value &right, const Location &) {
    return left.As<bool>() != right.As<bool>();
}

/// The type in which two numbers meet.
Kind Meeting(const Type &left, const Type &right) {
    if (!left.IsWhole() || !right.IsWhole())
        return Kind::kDouble;
    return left.Is(Kind::kInteger) && right.Is(Kind::kInteger) ? Kind::kInteger : Kind::kInt64;
}

template <BinaryOperator op> Operation ArithmeticIn(Kind kind) {
    switch (kind) {
    case Kind::kInteger:
        return {{kind}, {kind}, Arithmetic<int32_t, op>};
    case Kind::kInt64:
        return {{kind}, {kind}, Arithmetic<int64_t, op>};
    default:
        return {{kind}, {kind}, Arithmetic<double, op>};
    }
}

template <BinaryOperator op> Operation DivisionIn(Kind kind) {
    if (kind == Kind::kInteger)
        return {{kind}, {kind}, Division<int32_t, op>};
    return {{Kind::kInt64}, {Kind::kInt64}, Division<int64_t, op>};
}

std::optional<Operation> NumberOperation(BinaryOperator op, const Type &left, const Type &right) {
    const Kind kind = Meeting(left, right);
    switch (op) {
    case BinaryOperator::kAdd:
        return ArithmeticIn<BinaryOperator::kAdd>(kind);
    case BinaryOperator::kSubtract:
        return ArithmeticIn<BinaryOperator::kSubtract>(kind);
    case BinaryOperator::kMultiply:
        return ArithmeticIn<BinaryOperator::kMultiply>(kind);
    case BinaryOperator::kDivide:
        return Operation{{Kind::kDouble}, {Kind::kDouble}, Quotient};
    case BinaryOperator::kPower:
        return Operation{{Kind::kDouble}, {Kind::kDouble}, Power};
    case BinaryOperator::kDivideWhole:
        return DivisionIn<BinaryOperator::kDivideWhole>(kind);
    case BinaryOperator::kRemainder:
        return DivisionIn<BinaryOperator::kRemainder>(kind);
    case BinaryOperator::kAnd:
        return Operation{{Kind::kInt64}, {Kind::kInt64}, Bits<true>};
    case BinaryOperator::kOr:
        return Operation{{Kind::kInt64}, {Kind::kInt64}, Bits<false>};
    case BinaryOperator::kXor:
        return Operation{{Kind::kInt64}, {Kind::kInt64}, BitsXor};
    default:
        return std::nullopt;
    }
}

struct Comparisons {
    decltype(Operation::apply) byOperator[6];
};

constexpr BinaryOperator kEqual = BinaryOperator::kEqual, kUnequal = BinaryOperator::kUnequal,
                         kLess = BinaryOperator::kLess, kLessOrEqual = BinaryOperator::kLessOrEqual,
                         kGreater = BinaryOperator::kGreater, kGreaterOrEqual = BinaryOperator::kGreaterOrEqual;

constexpr Comparisons kTexts{{CompareTexts<kEqual>, CompareTexts<kUnequal>, CompareTexts<kLess>,
                              CompareTexts<kLessOrEqual>, CompareTexts<kGreater>, CompareTexts<kGreaterOrEqual>}};
constexpr Comparisons kDates{{CompareDates<kEqual>, CompareDates<kUnequal>, CompareDates<kLess>,
                              CompareDates<kLessOrEqual>, CompareDates<kGreater>, CompareDates<kGreaterOrEqual>}};
template <class T>
constexpr Comparisons kNumbers{{CompareNumbers<T, kEqual>, CompareNumbers<T, kUnequal>, CompareNumbers<T, kLess>,
                                CompareNumbers<T, kLessOrEqual>, CompareNumbers<T, kGreater>,
                                CompareNumbers<T, kGreaterOrEqual>}};

Operation From(const Comparisons &comparisons, BinaryOperator op, const Type &operands) {
    const auto index = static_cast<size_t>(op) - static_cast<size_t>(BinaryOperator::kEqual);
    return {operands, {Kind::kBoolean}, comparisons.byOperator[index]};
}

bool IsDate(const Type &type) { return type.Is(Kind::kObject) && type.itsClass && type.itsClass->name == "Date"; }

std::optional<Operation> Comparison(BinaryOperator op, const Type &left, const Type &right) {
    const bool isEquality = op == BinaryOperator::kEqual || op == BinaryOperator::kUnequal;
    const auto either = [&](auto predicate) { return predicate(left) || predicate(right); };
    const auto both = [&](auto predicate) { return predicate(left) && predicate(right); };
    const auto isText = [](const Type &type) { return type.Is(Kind::kString); };
    const auto isNumber = [](const Type &type) { return type.IsNumber(); };
    const auto isVariant = [](const Type &type) { return type.Is(Kind::kVariant); };
    if (both(isNumber)) {
        const Kind kind = Meeting(left, right);
        return From(kind == Kind::kInteger ? kNumbers<int32_t>
                    : kind == Kind::kInt64 ? kNumbers<int64_t>
                                           : kNumbers<double>,
                    op, {kind});
    }
    if (both(isText))
        return From(kTexts, op, {Kind::kString});
    if (either(IsDate) && (both(IsDate) || either([](const Type &type) { return type.Is(Kind::kNil); })))
        return From(kDates, op, IsDate(left) ? left : right);
    if (isEquality && either(isVariant))
        return Operation{{Kind::kVariant},
                         {Kind::kBoolean},
                         op == BinaryOperator::kEqual ? CompareValues<BinaryOperator::kEqual>
                                                      : CompareValues<BinaryOperator::kUnequal>};
    // A Variant beside a text or a number is taken for one.
    if (either(isVariant) && either(isText))
        return From(kTexts, op, {Kind::kString});
    if (either(isVariant) && either(isNumber))
        return From(kNumbers<double>, op, {Kind::kDouble});
    if (isEquality && (Distance(left, right) || Distance(right, left)))
        return Operation{{Kind::kVariant},
                         {Kind::kBoolean},
                         op == BinaryOperator::kEqual ? CompareIdentity<BinaryOperator::kEqual>
                                                      : CompareIdentity<BinaryOperator::kUnequal>};
    return std::nullopt;
}

bool IsNumberValue(const Value &value) {
    return value.Is<int32_t>() || value.Is<uint32_t>() || value.Is<int64_t>() || value.Is<float>() ||
           value.Is<double>();
}

} // namespace

bool AreEqual(const Value &left, const Value &right) {
    if (IsNumberValue(left) && IsNumberValue(right))
        return host::ToDouble(left) == host::ToDouble(right);
    if (left.Is<std::string>() && right.Is<std::string>())
        return Compare(left.As<std::string>(), right.As<std::string>()) == 0;
    if (const host::DateInstance *leftDate = DateIn(left), *rightDate = DateIn(right); leftDate && rightDate)
        return leftDate->fields == rightDate->fields;
    return left == right;
}

std::optional<Operation> FindOperation(BinaryOperator op, const Type &left, const Type &right) {
    if (op >= BinaryOperator::kEqual && op <= BinaryOperator::kGreaterOrEqual)
        return Comparison(op, left, right);
    if (op == BinaryOperator::kIs) {
        if (!left.CanBeNil() || !right.CanBeNil())
            return std::nullopt;
        return Operation{{Kind::kVariant}, {Kind::kBoolean}, CompareIdentity<BinaryOperator::kEqual>};
    }
    if (op == BinaryOperator::kXor && left.Is(Kind::kBoolean) && right.Is(Kind::kBoolean))
        return Operation{{Kind::kBoolean}, {Kind::kBoolean}, TruthXor};
    const auto isTextOrVariant = [](const Type &type) { return type.Is(Kind::kString) || type.Is(Kind::kVariant); };
    if (op == BinaryOperator::kAdd && (left.Is(Kind::kString) || right.Is(Kind::kString)) && isTextOrVariant(left) &&
        isTextOrVariant(right))
        return Operation{{Kind::kString}, {Kind::kString}, Joined};
    if (left.IsNumber() && right.IsNumber())
        return NumberOperation(op, left, right);
    if (left.IsNumber() && right.Is(Kind::kVariant))
        return NumberOperation(op, left, {Kind::kDouble});
    if (left.Is(Kind::kVariant) && right.IsNumber())
        return NumberOperation(op, {Kind::kDouble}, right);
    return std::nullopt;
}

const char *SpellingOf(BinaryOperator op) {
    static constexpr const char *kSpellings[] = {"+", "-",  "*", "/",  "\\", "Mod", "^",  "=",  "<>",
                                                 "<", "<=", ">", ">=", "Is", "And", "Or", "Xor"};
    return kSpellings[static_cast<size_t>(op)];
}

} // namespace sim::language
