// Arrays of pointers with the callbacks they were made with. Without callbacks the pointers mean nothing to the array.
// The capacity of a mutable array is a hint: it grows past it.
#pragma once

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/ref.h"

#include <CoreFoundation/CFArray.h>

#include <span>
#include <vector>

namespace sim::macos {

class Array final : public Object {
public:
    /// Null callbacks are those of plain pointers.
    Array(const CFArrayCallBacks *callBacks, bool isMutable);
    ~Array() override;

    CFTypeID TypeID() const override { return CFArrayGetTypeID(); }
    bool EqualTo(const Object &other) const override;
    CFHashCode Hash() const override { return values_.size(); }
    std::string Description() const override;

    std::span<const void *const> Values() const { return values_; }
    bool IsMutable() const { return isMutable_; }
    /// Retains the value as the callbacks say.
    void Append(const void *value);

private:
    std::vector<const void *> values_;
    CFArrayCallBacks callBacks_{};
    bool isMutable_;
};

/// The values of an array, borrowed from it. Stops when it is none.
std::span<const void *const> ValuesOf(CFArrayRef array, const char *caller = __builtin_FUNCTION());

/// A new immutable array that retains the given objects. None of them may be null.
CFRef<CFArrayRef> MakeArray(std::span<const CFTypeRef> objects);

} // namespace sim::macos
