// One value against one operand. Strings compare with text, numbers and booleans with numbers, dates with $time and
// with numbers of seconds since 2001.
#include "simulator/macos/CoreServices/metadata/expression/value_comparison.h"

#include <compare>
#include <string>

namespace sim::macos::expression {

namespace {

bool Fits(std::partial_ordering order, Relation relation) {
    switch (relation) {
    case Relation::kEqual:
        return std::is_eq(order);
    case Relation::kLess:
        return std::is_lt(order);
    case Relation::kLessOrEqual:
        return std::is_lteq(order);
    case Relation::kGreater:
        return std::is_gt(order);
    case Relation::kGreaterOrEqual:
        return std::is_gteq(order);
    }
    return false;
}

std::u16string Text(CFStringRef string) {
    const CFIndex length = CFStringGetLength(string);
    std::u16string text(static_cast<std::size_t>(length), u'\0');
    CFStringGetCharacters(string, CFRangeMake(0, length), reinterpret_cast<UniChar *>(text.data()));
    return text;
}

Number NumberOf(CFNumberRef number) {
    if (CFNumberIsFloatType(number)) {
        double real = 0;
        CFNumberGetValue(number, kCFNumberDoubleType, &real);
        return Number::Real(real);
    }
    SInt64 whole = 0;
    CFNumberGetValue(number, kCFNumberSInt64Type, &whole);
    return Number::Whole(whole);
}

const Number *NumberIn(const Operand &operand) {
    if (const auto *text = std::get_if<TextOperand>(&operand))
        return text->number ? &*text->number : nullptr;
    return std::get_if<Number>(&operand);
}

bool NumberFits(const Number &value, Relation relation, const Operand &operand) {
    const Number *number = NumberIn(operand);
    return number && Fits(Compare(value, *number), relation);
}

/// Order is asked of where a period starts; equality of all of it.
bool DateFits(CFAbsoluteTime moment, Relation relation, const Operand &operand, CFAbsoluteTime now) {
    const auto *time = std::get_if<TimeFunction>(&operand);
    if (!time)
        return NumberFits(Number::Real(moment), relation, operand);
    const TimeSpan span = Resolve(*time, now);
    return relation == Relation::kEqual ? span.Contains(moment) : Fits(moment <=> span.start, relation);
}

} // namespace

bool ElementFits(CFTypeRef element, Relation relation, const Operand &operand, CFAbsoluteTime now) {
    const CFTypeID type = CFGetTypeID(element);
    if (type == CFStringGetTypeID()) {
        const auto *text = std::get_if<TextOperand>(&operand);
        return text && relation == Relation::kEqual && text->pattern.Matches(Text(static_cast<CFStringRef>(element)));
    }
    if (type == CFNumberGetTypeID())
        return NumberFits(NumberOf(static_cast<CFNumberRef>(element)), relation, operand);
    if (type == CFBooleanGetTypeID()) {
        const bool value = CFBooleanGetValue(static_cast<CFBooleanRef>(element));
        return NumberFits(Number::Whole(value ? 1 : 0), relation, operand);
    }
    if (type == CFDateGetTypeID())
        return DateFits(CFDateGetAbsoluteTime(static_cast<CFDateRef>(element)), relation, operand, now);
    return false;
}

} // namespace sim::macos::expression
