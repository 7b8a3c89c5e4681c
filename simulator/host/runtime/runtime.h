// The host's inside: everything that services and the program's calls share. It is reached through Runtime::Current,
// because the services are plain C functions.
#pragma once

#include "simulator/host/classes/builtin.h"
#include "simulator/host/classes/classes.h"
#include "simulator/host/entities/array_entity.h"
#include "simulator/host/entities/string_entity.h"
#include "simulator/host/entities/variant_entity.h"
#include "simulator/host/runtime/events.h"
#include "simulator/host/runtime/services.h"

#include <span>

namespace sim::host {

class Runtime {
public:
    /// `services` are all that this stand-in has; they must outlive it.
    Runtime(HostOptions given, std::span<const ServiceRow> services);
    ~Runtime();

    /// Stops when no host is alive.
    static Runtime &Current();
    static Runtime *CurrentOrNull();

    /// A host that reports no version counts as older than any.
    bool IsOlderThan(double version) const { return options.version.value_or(0) < version; }

    // New things have one reference, which is the caller's.

    StringEntity &NewString(Text text);
    ArrayEntity &NewArray(std::string typeName);
    /// Calls the constructor of a class that has one.
    Instance &NewInstance(const Class &itsClass);
    /// Null when the host has no such class.
    Instance *NewInstanceNamed(std::string_view className);
    template <class T> T *NewBuiltIn(std::string_view className) {
        return dynamic_cast<T *>(NewInstanceNamed(className));
    }
    /// Null for nil; an object gets one more reference.
    Entity *Box(const Value &value);
    /// Takes no reference away.
    Value Unbox(Entity *entity);

    /// The value of an element; the array keeps its own references.
    Value ElementOf(const ArrayEntity &array, int32_t index);
    /// Stops when the value does not fit the array.
    void PutElement(ArrayEntity &array, int32_t index, const Value &value);

    /// Raises an exception of the host itself.
    void Raise(std::string className, std::string message);

    const HostOptions options;
    Heap heap;
    Services services;
    Classes classes;
    Events events;
    Arrivals arrivals;
    std::vector<Method> globalMethods;
    std::vector<RaisedException> raised;
    std::map<std::string, int32_t, std::less<>> expectedLeft;
    /// Calls of the program under way, one inside the other.
    int32_t depth = 0;
};

} // namespace sim::host
