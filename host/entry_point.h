// How a host service is called: a described cell that looks like the plain function. The first call asks the resolver,
// later calls are a load and an indirect call. A service that the host lacks does nothing and gives the neutral value
// of its result; it is asked for again the next time.
#pragma once

#include "host/capabilities.h"

/// Where a host service is, whatever its shape: looked for by name, then by its older name, until it is found.
class ServiceCell {
public:
    constexpr ServiceCell(const char *name, const char *olderName) : name_(name), olderName_(olderName) {}
    ServiceCell(const ServiceCell &) = delete;
    ServiceCell &operator=(const ServiceCell &) = delete;

    /// The address of the service; null when the host has it by neither name.
    HostCode Find() {
        if (address_) [[likely]]
            return address_;
        return Ask();
    }

private:
    [[gnu::cold, gnu::noinline]] HostCode Ask();

    const char *name_;
    const char *olderName_;
    HostCode address_ = nullptr;
};

template <class Signature> class EntryPoint;

template <class Result, class... Arguments> class EntryPoint<Result(Arguments...)> {
public:
    using Function = Result (*)(Arguments...);

    constexpr explicit EntryPoint(const char *name, const char *olderName = nullptr) : cell_(name, olderName) {}

    /// The service itself, or null when the host lacks it.
    Function Find() { return reinterpret_cast<Function>(cell_.Find()); }
    explicit operator bool() { return Find() != nullptr; }

    Result operator()(Arguments... arguments) {
        const Function function = Find();
        return function ? function(arguments...) : Result();
    }

private:
    ServiceCell cell_;
};

template <class Signature> class ElementEntryPoint;

/// A service in two levels: the entry point gives the function that serves this array's element type, which is then
/// called with the array. The element function belongs to the array and is fetched for each element.
template <class Result, class... Arguments> class ElementEntryPoint<Result(_REALarray *, Arguments...)> {
public:
    using ElementFunction = Result (*)(_REALarray *, Arguments...);

    constexpr explicit ElementEntryPoint(const char *name, const char *olderName) : factory_(name, olderName) {}

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
