// Numbers, their stored forms and the reads that lose something.
#include "simulator/macos/CoreFoundation/number.h"

#include "simulator/macos/control/faults.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace sim::macos {

namespace {

constexpr std::int64_t kSmallestShared = -1;
constexpr std::int64_t kLargestShared = 12;

template <class T> T Load(const void *value) {
    T result;
    std::memcpy(&result, value, sizeof result);
    return result;
}

template <class T> void Store(void *place, T value) { std::memcpy(place, &value, sizeof value); }

// Low bits of a wider integer.
template <class T> bool StoreInteger(void *place, std::int64_t value) {
    const T narrow = static_cast<T>(value);
    Store(place, narrow);
    return narrow == value;
}

// Towards zero; what lies outside the range leaves what the processor leaves, which nobody may rely on.
template <class T> bool StoreInteger(void *place, double value) {
    const double bound = std::ldexp(1.0, std::numeric_limits<T>::digits);
    const bool fits = value > -bound - 1 && value < bound;
    const T result = fits ? static_cast<T>(value) : std::numeric_limits<T>::min();
    Store(place, result);
    return fits && static_cast<double>(result) == value;
}

bool StoreFloat32(void *place, double value) {
    const bool fits = std::isinf(value) || !(std::fabs(value) > std::numeric_limits<float>::max());
    const float narrow =
        fits ? static_cast<float>(value)
             : std::copysign(std::numeric_limits<float>::infinity(), static_cast<float>(value > 0 ? 1 : -1));
    Store(place, narrow);
    return std::isnan(value) || static_cast<double>(narrow) == value;
}

bool StoreFloat(CFNumberType form, void *place, std::int64_t value) {
    const auto wide = static_cast<double>(value);
    bool whole = wide < std::ldexp(1.0, 63) && static_cast<std::int64_t>(wide) == value;
    if (form == kCFNumberFloat64Type)
        Store(place, wide);
    else
        whole &= StoreFloat32(place, wide);
    return whole;
}

// One for each small integer, made before any program can ask for one, so that the ledger knows them from the start.
const std::array<Number *, kLargestShared - kSmallestShared + 1> kShared = [] {
    std::array<Number *, kLargestShared - kSmallestShared + 1> numbers{};
    std::int64_t integer = kSmallestShared;
    for (Number *&number : numbers)
        number = new Number(kCFNumberSInt32Type, integer++);
    return numbers;
}();

Number *NewFloat(CFNumberType form, double real) {
    return new Number(std::isfinite(real) ? form : kCFNumberFloat64Type, real);
}

// +1.
Number *IntegerNumber(CFNumberType form, std::int64_t integer) {
    if (integer < kSmallestShared || integer > kLargestShared)
        return new Number(form, integer);
    Number *shared = kShared[static_cast<std::size_t>(integer - kSmallestShared)];
    shared->Retain();
    return shared;
}

// +1.
Number *NumberOf(CFNumberType type, const void *value) {
    const CFNumberType form = StoredForm(type);
    switch (form) {
    case kCFNumberSInt8Type:
        return IntegerNumber(form, Load<std::int8_t>(value));
    case kCFNumberSInt16Type:
        return IntegerNumber(form, Load<std::int16_t>(value));
    case kCFNumberSInt32Type:
        return IntegerNumber(form, Load<std::int32_t>(value));
    case kCFNumberSInt64Type:
        return IntegerNumber(form, Load<std::int64_t>(value));
    case kCFNumberFloat32Type:
        return NewFloat(form, static_cast<double>(Load<float>(value)));
    default:
        return NewFloat(form, Load<double>(value));
    }
}

bool SameReal(double one, double other) {
    return std::isnan(one) ? std::isnan(other) : one == other && std::signbit(one) == std::signbit(other);
}

// Exactly: 2^53 + 1 is another number than the float 2^53.
bool SameValue(std::int64_t integer, double real) {
    std::int64_t whole = 0;
    return StoreInteger<std::int64_t>(&whole, real) && whole == integer && !(real == 0 && std::signbit(real));
}

FallibleCall createNumber("CFNumberCreate");

} // namespace

CFNumberType StoredForm(CFNumberType type) {
    switch (type) {
    case kCFNumberSInt8Type:
    case kCFNumberCharType:
        return kCFNumberSInt8Type;
    case kCFNumberSInt16Type:
    case kCFNumberShortType:
        return kCFNumberSInt16Type;
    case kCFNumberSInt32Type:
    case kCFNumberIntType:
    case kCFNumberLongType:
    case kCFNumberCFIndexType:
    case kCFNumberNSIntegerType:
        return kCFNumberSInt32Type;
    case kCFNumberSInt64Type:
    case kCFNumberLongLongType:
        return kCFNumberSInt64Type;
    case kCFNumberFloat32Type:
    case kCFNumberFloatType:
    case kCFNumberCGFloatType:
        return kCFNumberFloat32Type;
    case kCFNumberFloat64Type:
    case kCFNumberDoubleType:
        return kCFNumberFloat64Type;
    }
    Stop("no number has the type " + std::to_string(static_cast<int>(type)));
}

std::size_t SizeOf(CFNumberType storedForm) {
    switch (storedForm) {
    case kCFNumberSInt8Type:
        return 1;
    case kCFNumberSInt16Type:
        return 2;
    case kCFNumberSInt32Type:
    case kCFNumberFloat32Type:
        return 4;
    default:
        return 8;
    }
}

bool Number::EqualTo(const Object &other) const {
    const auto &number = static_cast<const Number &>(other);
    if (IsFloat() != number.IsFloat())
        return IsFloat() ? SameValue(number.integer_, real_) : SameValue(integer_, number.real_);
    return IsFloat() ? SameReal(real_, number.real_) : integer_ == number.integer_;
}

CFHashCode Number::Hash() const { return std::isnan(AsDouble()) ? 0 : std::hash<double>()(AsDouble()); }

std::string Number::Description() const { return IsFloat() ? std::to_string(real_) : std::to_string(integer_); }

bool Number::Read(CFNumberType form, void *value) const {
    switch (form) {
    case kCFNumberSInt8Type:
        return IsFloat() ? StoreInteger<std::int8_t>(value, real_) : StoreInteger<std::int8_t>(value, integer_);
    case kCFNumberSInt16Type:
        return IsFloat() ? StoreInteger<std::int16_t>(value, real_) : StoreInteger<std::int16_t>(value, integer_);
    case kCFNumberSInt32Type:
        return IsFloat() ? StoreInteger<std::int32_t>(value, real_) : StoreInteger<std::int32_t>(value, integer_);
    case kCFNumberSInt64Type:
        return IsFloat() ? StoreInteger<std::int64_t>(value, real_) : StoreInteger<std::int64_t>(value, integer_);
    default:
        break;
    }
    if (!IsFloat())
        return StoreFloat(form, value, integer_);
    if (form == kCFNumberFloat32Type)
        return StoreFloat32(value, real_);
    Store(value, real_);
    return true;
}

CFRef<CFNumberRef> MakeNumber(CFNumberType type, const void *value) {
    return CFRef<CFNumberRef>::Adopt(NumberOf(type, value)->As<CFNumberRef>());
}

CFRef<CFNumberRef> MakeNumber(std::int64_t value) { return MakeNumber(kCFNumberSInt64Type, &value); }

CFRef<CFNumberRef> MakeNumber(double value) { return MakeNumber(kCFNumberFloat64Type, &value); }

} // namespace sim::macos

using namespace sim::macos;

CFTypeID CFNumberGetTypeID() {
    static const CFTypeID type = RegisterType("CFNumber");
    return type;
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void *value) {
    if (!value)
        Stop("CFNumberCreate was given no value");
    if (createNumber.Fails())
        return nullptr;
    return MakeNumber(type, value).Give();
}

CFIndex CFNumberGetByteSize(CFNumberRef number) {
    return static_cast<CFIndex>(SizeOf(Expect<Number>(number).StoredType()));
}

Boolean CFNumberIsFloatType(CFNumberRef number) { return Expect<Number>(number).IsFloat(); }

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void *value) {
    if (!value)
        Stop("CFNumberGetValue was given no place to store the value");
    return Expect<Number>(number).Read(StoredForm(type), value);
}
