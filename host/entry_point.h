// How a host service is called: a described cell that looks like the plain function. The first call asks the resolver,
// later calls are a load and an indirect call. A service that the host lacks does nothing and gives the neutral value
// of its result; it is asked for again the next time.
#pragma once

#include "host/runtime.h"

/// The address of a host service by name, or by its older name; null when the host has neither.
HostCode ResolveEntryPoint(const char *name, const char *olderName);

template <class Signature> class EntryPoint;

template <class Result, class... Arguments> class EntryPoint<Result(Arguments...)> {
public:
    using Function = Result (*)(Arguments...);

    constexpr explicit EntryPoint(const char *name, const char *olderName = nullptr)
        : name_(name), olderName_(olderName) {}
    EntryPoint(const EntryPoint &) = delete;
    EntryPoint &operator=(const EntryPoint &) = delete;

    /// Whether the host has the service.
    explicit operator bool() { return Resolve() != nullptr; }

    Result operator()(Arguments... arguments) {
        const Function function = Resolve();
        return function ? function(arguments...) : Result();
    }

private:
    Function Resolve() {
        if (!cell_) [[unlikely]]
            cell_ = reinterpret_cast<Function>(ResolveEntryPoint(name_, olderName_));
        return cell_;
    }

    const char *name_;
    const char *olderName_;
    Function cell_ = nullptr;
};

template <class Signature> class ArrayEntryPoint;

/// A service in two levels: the entry point gives the function that serves this array's element type, which is then
/// called with the array. The element function belongs to the array and is fetched for each element.
template <class Result, class... Arguments> class ArrayEntryPoint<Result(_REALarray *, Arguments...)> {
public:
    using ElementFunction = Result (*)(_REALarray *, Arguments...);

    constexpr explicit ArrayEntryPoint(const char *name, const char *olderName) : factory_(name, olderName) {}

    /// The element function of an array, or null. A host that cannot make arrays gives null ones, which it must not be
    /// asked about.
    ElementFunction For(_REALarray *array) { return array ? factory_(array) : nullptr; }

    Result operator()(_REALarray *array, Arguments... arguments) {
        const ElementFunction function = For(array);
        return function ? function(array, arguments...) : Result();
    }

private:
    EntryPoint<ElementFunction(_REALarray *)> factory_;
};
