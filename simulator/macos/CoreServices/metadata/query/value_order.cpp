#include "simulator/macos/CoreServices/metadata/query/value_order.h"

#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <cmath>

namespace sim::macos::query {

namespace {

template <typename Value> CFComparisonResult Order(const Value &one, const Value &other) {
    if (one < other)
        return kCFCompareLessThan;
    return other < one ? kCFCompareGreaterThan : kCFCompareEqualTo;
}

enum class Kind { kNumber, kDate, kString, kData, kList, kOther };

Kind KindOf(CFTypeRef value) {
    const CFTypeID type = CFGetTypeID(value);
    if (type == CFNumberGetTypeID() || type == CFBooleanGetTypeID())
        return Kind::kNumber;
    if (type == CFDateGetTypeID())
        return Kind::kDate;
    if (type == CFStringGetTypeID())
        return Kind::kString;
    if (type == CFDataGetTypeID())
        return Kind::kData;
    return type == CFArrayGetTypeID() ? Kind::kList : Kind::kOther;
}

struct WholeOrReal {
    bool isWhole;
    SInt64 whole;
    double real;
};

WholeOrReal NumberOf(CFTypeRef value) {
    if (CFGetTypeID(value) == CFBooleanGetTypeID()) {
        const SInt64 whole = CFBooleanGetValue(static_cast<CFBooleanRef>(value)) ? 1 : 0;
        return {true, whole, static_cast<double>(whole)};
    }
    const auto number = static_cast<CFNumberRef>(value);
    WholeOrReal result{!CFNumberIsFloatType(number), 0, 0};
    CFNumberGetValue(number, kCFNumberSInt64Type, &result.whole);
    CFNumberGetValue(number, kCFNumberDoubleType, &result.real);
    return result;
}

CFComparisonResult CompareNumbers(CFTypeRef one, CFTypeRef other) {
    const WholeOrReal left = NumberOf(one);
    const WholeOrReal right = NumberOf(other);
    if (left.isWhole && right.isWhole)
        return Order(left.whole, right.whole);
    if (std::isnan(left.real) || std::isnan(right.real)) // not a number comes before all numbers
        return Order(!std::isnan(left.real), !std::isnan(right.real));
    return Order(left.real, right.real);
}

CFComparisonResult CompareData(CFDataRef one, CFDataRef other) {
    const UInt8 *left = CFDataGetBytePtr(one);
    const UInt8 *right = CFDataGetBytePtr(other);
    const auto lessFrom = [](const UInt8 *a, CFIndex aLength, const UInt8 *b, CFIndex bLength) {
        return std::lexicographical_compare(a, a + aLength, b, b + bLength);
    };
    if (lessFrom(left, CFDataGetLength(one), right, CFDataGetLength(other)))
        return kCFCompareLessThan;
    return lessFrom(right, CFDataGetLength(other), left, CFDataGetLength(one)) ? kCFCompareGreaterThan
                                                                               : kCFCompareEqualTo;
}

CFComparisonResult CompareLists(CFArrayRef one, CFArrayRef other) {
    const CFIndex common = std::min(CFArrayGetCount(one), CFArrayGetCount(other));
    for (CFIndex index = 0; index < common; ++index) {
        const auto order = CompareValues(CFArrayGetValueAtIndex(one, index), CFArrayGetValueAtIndex(other, index));
        if (order != kCFCompareEqualTo)
            return order;
    }
    return Order(CFArrayGetCount(one), CFArrayGetCount(other));
}

} // namespace

CFComparisonResult CompareValues(CFTypeRef one, CFTypeRef other) {
    if (!one || !other)
        return Order(one != nullptr, other != nullptr);
    const Kind kind = KindOf(one);
    if (kind != KindOf(other))
        return Order(kind, KindOf(other));
    switch (kind) {
    case Kind::kNumber:
        return CompareNumbers(one, other);
    case Kind::kDate:
        return Order(CFDateGetAbsoluteTime(static_cast<CFDateRef>(one)),
                     CFDateGetAbsoluteTime(static_cast<CFDateRef>(other)));
    case Kind::kString:
        return CFStringCompare(static_cast<CFStringRef>(one), static_cast<CFStringRef>(other),
                               kCFCompareNonliteral | kCFCompareLocalized | kCFCompareNumerically);
    case Kind::kData:
        return CompareData(static_cast<CFDataRef>(one), static_cast<CFDataRef>(other));
    case Kind::kList:
        return CompareLists(static_cast<CFArrayRef>(one), static_cast<CFArrayRef>(other));
    case Kind::kOther:
        return kCFCompareEqualTo;
    }
    return kCFCompareEqualTo;
}

} // namespace sim::macos::query
