// What the program can do with a thing of the host that it holds: call methods, read and set properties, implement
// events, go through arrays, look into dates, dictionaries and the like.
#pragma once

#include "simulator/host/entities/value.h"

#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace sim::host {

struct EventCall;

class Object : public Reference {
public:
    Object() = default;
    Object(Reference reference) : Reference(std::move(reference)) {}

    /// Where its plugin data begins; null unless it is an instance of a plugin's or companion's class.
    void *Data() const;

    // An instance of a plugin's class.

    /// Calls a method by its name, choosing among its overloads by the arguments, or by its whole declaration.
    template <class Result = Value, class... Arguments> Result Call(std::string_view method, Arguments &&...arguments);
    Value CallWith(std::string_view method, std::vector<Value> arguments) const;
    using Reference::Get;
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
};

/// An event as it reaches its handler: the object that raised it and the declared arguments.
struct EventCall {
    Object object;
    std::string name;
    std::vector<Value> arguments;
};

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
