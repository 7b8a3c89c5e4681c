// String objects made at run time: UTF-16 units in memory of their own, well formed or not. Constant strings are
// another kind (constant_string.h); text.h reads both.
#pragma once

#include "simulator/macos/CoreFoundation/object.h"

#include <CoreFoundation/CFString.h>

#include <string>
#include <string_view>

namespace sim::macos {

class String final : public Object {
public:
    /// Immutable.
    explicit String(std::u16string text) : text_(std::move(text)) {}
    /// The empty string that nobody can free.
    explicit String(Immortal immortal) : Object(immortal) {}
    /// Mutable, and never longer than the limit; 0 means no limit.
    String(std::u16string text, CFIndex limit);

    CFTypeID TypeID() const override { return CFStringGetTypeID(); }
    bool EqualTo(const Object &other) const override;
    CFHashCode Hash() const override;
    std::string Description() const override;

    std::u16string_view Text() const { return text_; }
    /// Stops when the string is immutable or the text passes its limit.
    void SetText(std::u16string text);

private:
    std::u16string text_;
    CFIndex limit_ = 0;
    bool isMutable_ = false;
};

/// A string of no bytes or characters, whatever the encoding: always the same object, which nobody can free.
CFStringRef EmptyString();

/// The hash of a string with this text, whatever kind of string it is.
CFHashCode HashOf(std::u16string_view text);

} // namespace sim::macos
