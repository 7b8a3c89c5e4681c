// The values of a host program as C++ sees them. Scalars and text are held by value; everything that the host counts
// references of (instances, arrays, dates, dictionaries, boxed variants) is held through Object, which owns one
// reference. Reading a value as another type than it has is a mistake of the test or tool and throws ProgramError; it
// never reaches the plugin.
#pragma once

#include "simulator/host/ground/options.h"

#include <iosfwd>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace sim::host {

class Heap;
class Value;
struct Entity;
struct EventCall;

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

/// A colour, 0xRRGGBB.
struct Color {
    uint32_t rgb = 0;

    bool operator==(const Color &) const = default;
};

/// One reference to something that lives in the host; none when nil.
class Object {
public:
    Object() = default;
    Object(const Object &other);
    Object(Object &&other) noexcept;
    Object &operator=(Object other) noexcept;
    ~Object();

    /// Takes over one reference that the caller holds.
    static Object Adopt(Entity *entity);
    /// Takes a reference of its own.
    static Object Share(Entity *entity);

    bool IsNil() const { return entity_ == nullptr; }
    explicit operator bool() const { return entity_ != nullptr; }
    /// The same object of the host, not an equal one.
    bool operator==(const Object &other) const { return entity_ == other.entity_; }

    /// "MDQueryQTX", "Date", "Dictionary", "FolderItem", "MemoryBlock", "string()", "variant"...
    std::string ClassName() const;
    /// What VarType answers for it.
    int32_t TypeCode() const;
    /// The address that the plugin knows it by.
    void *Address() const;
    /// Where its plugin data begins; null unless it is an instance of a plugin's or companion's class.
    void *Data() const;
    /// References held on it now, by whomever.
    int32_t References() const;
    Entity *Get() const { return entity_; }
    /// Gives up the reference early.
    void Release() { *this = Object(); }

    // An instance of a plugin's class.

    /// Calls a method by its name, choosing among its overloads by the arguments, or by its whole declaration.
    template <class Result = Value, class... Arguments> Result Call(std::string_view method, Arguments &&...arguments);
    Value CallWith(std::string_view method, std::vector<Value> arguments) const;
    /// Reads a property, or a method without arguments that is written like one.
    template <class Result = Value> Result Get(std::string_view property) const;
    Value GetValue(std::string_view property) const;
    /// Assigns to a property, or to the second half of a property-like pair.
    void Set(std::string_view property, const Value &value) const;
    /// Implements an event. What the handler throws comes out of the outermost call that the program made, or of
    /// Host::RethrowFromHandlers.
    void OnEvent(std::string_view event, std::function<void(const EventCall &)> handler) const;
    /// Takes the handler away again.
    void RemoveEvent(std::string_view event) const;

    // An array.

    /// −1 when empty.
    int32_t UpperBound() const;
    Value At(int32_t index) const;
    std::vector<Value> Elements() const;
    template <class T> std::vector<T> As() const;
    void Append(const Value &value) const;
    void Put(int32_t index, const Value &value) const;
    /// Changes the number of elements; new ones are nil or zero.
    void Resize(int32_t upperBound) const;

    // Built-in classes.

    DateFields Date() const;
    /// Makes every read of a date's fields fail from now on.
    void MakeDateUnreadable() const;
    /// A dictionary's pairs in the order of their insertion.
    std::vector<std::pair<Value, Value>> Entries() const;
    /// A dictionary's value for a key, nil when there is none.
    Value Lookup(const Value &key) const;
    void Store(const Value &key, const Value &value) const;
    /// A memory block's bytes.
    std::string Bytes() const;
    /// Makes a memory block report another size than it has.
    void ReportSize(int32_t size) const;
    /// A folder item's path, empty when it has none.
    std::string Path() const;

private:
    explicit Object(Entity *entity) : entity_(entity) {}

    Entity *entity_ = nullptr;
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
    Value(Object object);

    bool IsNil() const { return std::holds_alternative<std::monostate>(held_); }
    template <class T> bool Is() const;
    /// The value as exactly that type; throws ProgramError when it has another. std::string gives the text in UTF-8,
    /// and
    /// "" for nil; Object gives nil for nil.
    template <class T> T As() const;

    /// Scalars by value, text by its characters, objects by identity.
    bool operator==(const Value &other) const;
    /// For messages and tables: `"abc"`, `7`, `nil`, `MDItemQTX #12`.
    std::string Describe() const;

private:
    using Held = std::variant<std::monostate, bool, int32_t, uint32_t, int64_t, float, double, Color, Text, Object>;

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

std::ostream &operator<<(std::ostream &out, const Value &value);
std::ostream &operator<<(std::ostream &out, const Object &object);
std::ostream &operator<<(std::ostream &out, const DateFields &date);

/// An event as it reaches its handler: the object that raised it and the declared arguments.
struct EventCall {
    Object object;
    std::string name;
    std::vector<Value> arguments;
};

/// `text` as UTF-8; bytes that are no text in its encoding become U+FFFD. Text of unknown encoding is read as MacRoman.
std::string ToUTF8(const Text &text);

template <> inline constexpr const char *Value::kNameOf<bool> = "a boolean";
template <> inline constexpr const char *Value::kNameOf<int32_t> = "an integer";
template <> inline constexpr const char *Value::kNameOf<uint32_t> = "a uint32";
template <> inline constexpr const char *Value::kNameOf<int64_t> = "an int64";
template <> inline constexpr const char *Value::kNameOf<float> = "a single";
template <> inline constexpr const char *Value::kNameOf<double> = "a double";
template <> inline constexpr const char *Value::kNameOf<Color> = "a color";
template <> inline constexpr const char *Value::kNameOf<Text> = "a string";
template <> inline constexpr const char *Value::kNameOf<Object> = "an object";

template <class T> bool Value::Is() const {
    if constexpr (std::is_same_v<T, std::string>)
        return std::holds_alternative<Text>(held_);
    else
        return std::holds_alternative<T>(held_);
}

template <class T> T Value::As() const {
    if constexpr (std::is_same_v<T, Value>)
        return *this;
    else if constexpr (std::is_same_v<T, std::string>)
        return IsNil() ? std::string() : ToUTF8(Require<Text>());
    else if constexpr (std::is_same_v<T, Object>)
        return IsNil() ? Object() : Require<Object>();
    else if constexpr (std::is_same_v<T, DateFields>)
        return Require<Object>().Date();
    else if constexpr (!std::is_void_v<T>)
        return Require<T>();
}

template <class T> std::vector<T> Object::As() const {
    std::vector<T> elements;
    for (const Value &element : Elements())
        elements.push_back(element.As<T>());
    return elements;
}

template <class Result, class... Arguments> Result Object::Call(std::string_view method, Arguments &&...arguments) {
    return CallWith(method, {Value(std::forward<Arguments>(arguments))...}).template As<Result>();
}

template <class Result> Result Object::Get(std::string_view property) const {
    return GetValue(property).template As<Result>();
}

} // namespace sim::host
