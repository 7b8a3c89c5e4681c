// What the tests of the stand-in host share: a host that must be in balance at its end, services asked for through the
// resolver as a plugin asks, and stops that arrive as exceptions.
#pragma once

#include "simulator/host/ground/stop.h"
#include "simulator/host/host.h"

#include <doctest/doctest.h>

namespace tests {

using namespace sim::host;

/// What the host stops with, while a StopsThrow is alive.
class Stopped : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class StopsThrow {
public:
    StopsThrow();
    StopsThrow(const StopsThrow &) = delete;
    StopsThrow &operator=(const StopsThrow &) = delete;
    ~StopsThrow();

private:
    StopHandler previous_;
};

/// The reason that the host stops `action` with, or "" when it does not.
template <class Action> std::string ReasonOfStop(Action action) {
    StopsThrow stopsThrow;
    try {
        action();
    } catch (const Stopped &stopped) {
        return stopped.what();
    }
    return "";
}

/// The message of the ProgramError that `action` ends with, or "" when it does not.
template <class Action> std::string ReasonOfRefusal(Action action) {
    try {
        action();
    } catch (const ProgramError &error) {
        return error.what();
    }
    return "";
}

inline bool Contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

inline bool IsOffered(const char *name) { return Host::GetResolver()(name) != nullptr; }

/// A service as a plugin gets it; a service that is missing fails the test.
template <class Signature> Signature *Ask(const char *name) {
    Host::Function function = Host::GetResolver()(name);
    const bool isThere = function != nullptr;
    REQUIRE_MESSAGE(isThere, name);
    return reinterpret_cast<Signature *>(function);
}

/// A method that the host language declares, loaded as a plugin loads it.
template <class Signature> Signature *LoadGlobal(const char *declaration) {
    auto load = Ask<Host::Function(const void *, const char *)>("REALLoadGlobalMethod");
    return reinterpret_cast<Signature *>(load(nullptr, declaration));
}
template <class Signature> Signature *LoadOn(const void *object, const char *declaration) {
    auto load = Ask<Host::Function(const void *, const char *)>("REALLoadObjectMethod");
    return reinterpret_cast<Signature *>(load(object, declaration));
}

inline bool CanLoadGlobal(const char *declaration) { return LoadGlobal<void()>(declaration) != nullptr; }
inline bool CanLoadOn(const void *object, const char *declaration) {
    return LoadOn<void()>(object, declaration) != nullptr;
}

/// The element function of an array.
template <class Signature> Signature *ElementFunction(const char *service, const void *array) {
    auto factory = Ask<Host::Function(const void *)>(service);
    return reinterpret_cast<Signature *>(factory(array));
}

inline void UnlockObject(const void *object) { Ask<void(const void *)>("REALUnlockObject")(object); }
inline void UnlockString(const void *string) { Ask<void(const void *)>("REALUnlockString")(string); }

/// A boolean result as a plugin must read it.
inline bool LowByte(uint32_t result) { return (result & 0xFF) != 0; }

class HostUnderTest : public Host {
public:
    explicit HostUnderTest(HostOptions options = {}) : Host(std::move(options)) {}
    explicit HostUnderTest(double version) : Host(OfVersion(version)) {}
    ~HostUnderTest();

    static HostOptions OfVersion(double version) {
        HostOptions options;
        options.version = version;
        return options;
    }
};

} // namespace tests
