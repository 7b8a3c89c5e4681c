// Dates: seconds since 2001-01-01 00:00:00 GMT, and the proleptic Gregorian calendar on both sides of it. Time zones
// other than GMT are not modelled.
#pragma once

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/ref.h"

#include <CoreFoundation/CFDate.h>

namespace sim::macos {

class Date final : public Object {
public:
    explicit Date(CFAbsoluteTime at) : at_(at) {}

    CFTypeID TypeID() const override { return CFDateGetTypeID(); }
    bool EqualTo(const Object &other) const override { return at_ == static_cast<const Date &>(other).at_; }
    CFHashCode Hash() const override;
    std::string Description() const override { return std::to_string(at_); }

    CFAbsoluteTime At() const { return at_; }

private:
    CFAbsoluteTime at_;
};

/// A new date.
CFRef<CFDateRef> MakeDate(CFAbsoluteTime at);

} // namespace sim::macos
