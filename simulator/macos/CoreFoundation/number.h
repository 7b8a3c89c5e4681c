// Numbers: a signed integer of 8 to 64 bits or a float of 32 or 64, stored in the form it was made in. But for each
// integer from -1 to 12 there is one object, a 32-bit integer, whatever it was made as; and infinities and what is no
// number are 64-bit floats. Numbers are equal when their values are, exactly; 0.0 and -0.0 differ, and NaN is NaN.
#pragma once

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/ref.h"

#include <CoreFoundation/CFNumber.h>

#include <cstdint>

namespace sim::macos {

class Number final : public Object {
public:
    /// The type is that of a stored form: kCFNumberSInt8Type to kCFNumberFloat64Type.
    Number(CFNumberType type, std::int64_t integer) : type_(type), integer_(integer) {}
    Number(CFNumberType type, double real) : type_(type), real_(real) {}

    CFTypeID TypeID() const override { return CFNumberGetTypeID(); }
    bool EqualTo(const Object &other) const override;
    CFHashCode Hash() const override;
    std::string Description() const override;

    bool IsFloat() const { return type_ == kCFNumberFloat32Type || type_ == kCFNumberFloat64Type; }
    CFNumberType StoredType() const { return type_; }
    /// The value when it is an integer, else when it is a float.
    std::int64_t Integer() const { return integer_; }
    double Real() const { return real_; }
    double AsDouble() const { return IsFloat() ? real_ : static_cast<double>(integer_); }

    /// Writes the value in another form, whole or as far as it goes; false when something was lost.
    bool Read(CFNumberType form, void *value) const;

private:
    CFNumberType type_;
    std::int64_t integer_ = 0;
    double real_ = 0;
};

/// The fixed-width type behind a type that a program names: kCFNumberLongType is kCFNumberSInt32Type, and so on. Stops
/// for a number that names no type.
CFNumberType StoredForm(CFNumberType type);
/// In bytes.
std::size_t SizeOf(CFNumberType storedForm);

/// A number, new or shared; +1 either way.
CFRef<CFNumberRef> MakeNumber(CFNumberType type, const void *value);
CFRef<CFNumberRef> MakeNumber(std::int64_t value);
CFRef<CFNumberRef> MakeNumber(double value);

} // namespace sim::macos
