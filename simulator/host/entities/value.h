// The values of a host program as C++ sees them. Scalars and text are held by value; everything that the host counts
// references of (instances, arrays, dates, dictionaries, boxed variants) is held through a Reference. Reading a value
// as another type than it has is a mistake of the test or tool and throws ProgramError; it never reaches the plugin.
#pragma once

#include "simulator/host/entities/reference.h"
#include "simulator/host/ground/text.h"

#include <iosfwd>
#include <stdexcept>
#include <type_traits>
#include <variant>
#include <vector>

namespace sim::host {

/// What a compiler of the host language would have refused: an unknown method, an argument of the wrong type.
class ProgramError : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

/// The fields of a host date as they were set; nothing normalises them.
struct DateFields {
    int32_t year = 0, month = 1, day = 1, hour = 0, minute = 0, second = 0;

    bool operator==(const DateFields &) const = default;
};

/// "2009-02-15 12:30:00"
std::string DateText(const DateFields &date);

/// A colour, 0xRRGGBB.
struct Color {
    uint32_t rgb = 0;

    bool operator==(const Color &) const = default;
};

/// Anything that a host program can hold in a variable.
class Value {
public:
    Value() = default;
    Value(std::nullptr_t) {}
    Value(bool value) : held_(value) {}
    Value(int32_t value) : held_(value) {}
    Value(uint32_t value) : held_(value) {}
    Value(int64_t value) : held_(value) {}
    Value(float value) : held_(value) {}
    Value(double value) : held_(value) {}
    Value(Color value) : held_(value) {}
    Value(const void *) = delete; // would be taken for a boolean
    Value(const char *text) : held_(Text{text}) {}
    Value(std::string_view text) : held_(Text{std::string(text)}) {}
    Value(std::string text) : held_(Text{std::move(text)}) {}
    Value(Text text) : held_(std::move(text)) {}
    Value(Reference reference);

    bool IsNil() const { return std::holds_alternative<std::monostate>(held_); }
    template <class T> bool Is() const;
    /// The value as exactly that type; throws ProgramError when it has another. std::string gives the text in UTF-8,
    /// and "" for nil; a kind of Reference gives nil for nil.
    template <class T> T As() const;

    /// Scalars by value, text by its characters, objects by identity.
    bool operator==(const Value &other) const;
    /// What the visitor makes of nil (a std::monostate), a number, a boolean, a Color, a Text or a Reference.
    template <class Visitor> auto Visit(Visitor visitor) const { return std::visit(visitor, held_); }

    /// For messages and tables: `"abc"`, `7`, `nil`, `MDItemQTX #12`.
    std::string Describe() const;

private:
    using Held = std::variant<std::monostate, bool, int32_t, uint32_t, int64_t, float, double, Color, Text, Reference>;

    template <class T> const T &Require() const {
        if (const T *held = std::get_if<T>(&held_))
            return *held;
        ThrowUnlike(kNameOf<T>);
    }
    template <class T> static constexpr const char *kNameOf = nullptr;
    [[noreturn]] void ThrowUnlike(const char *wanted) const;
    std::string TypeName() const;

    Held held_;
};

/// The arguments of a call: `(4, "a text", MDItemQTX #12)`.
std::string ArgumentsText(const std::vector<Value> &arguments);

std::ostream &operator<<(std::ostream &out, const Value &value);
std::ostream &operator<<(std::ostream &out, const Reference &reference);
std::ostream &operator<<(std::ostream &out, const DateFields &date);

template <> inline constexpr const char *Value::kNameOf<bool> = "a boolean";
template <> inline constexpr const char *Value::kNameOf<int32_t> = "an integer";
template <> inline constexpr const char *Value::kNameOf<uint32_t> = "a uint32";
template <> inline constexpr const char *Value::kNameOf<int64_t> = "an int64";
template <> inline constexpr const char *Value::kNameOf<float> = "a single";
template <> inline constexpr const char *Value::kNameOf<double> = "a double";
template <> inline constexpr const char *Value::kNameOf<Color> = "a color";
template <> inline constexpr const char *Value::kNameOf<Text> = "a string";
template <> inline constexpr const char *Value::kNameOf<Reference> = "an object";

template <class T> bool Value::Is() const {
    if constexpr (std::is_same_v<T, std::string>)
        return std::holds_alternative<Text>(held_);
    else if constexpr (std::is_base_of_v<Reference, T>)
        return std::holds_alternative<Reference>(held_);
    else
        return std::holds_alternative<T>(held_);
}

template <class T> T Value::As() const {
    if constexpr (std::is_same_v<T, Value>)
        return *this;
    else if constexpr (std::is_same_v<T, std::string>)
        return IsNil() ? std::string() : ToUTF8(Require<Text>());
    else if constexpr (std::is_base_of_v<Reference, T>)
        return IsNil() ? T() : T(Require<Reference>());
    else if constexpr (!std::is_void_v<T>)
        return Require<T>();
}

} // namespace sim::host
