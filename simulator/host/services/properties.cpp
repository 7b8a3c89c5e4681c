// Properties by name. A read gives false, and leaves the result alone, when there is no such property or it has another
// type; setting a property that is not there stops the host, because no plugin has a reason to.
#include "simulator/host/ground/stop.h"
#include "simulator/host/runtime/runtime.h"
#include "simulator/host/services/table.h"
#include "simulator/host/services/truth.h"

namespace sim::host {

namespace {

Entity &Owner(const void *object) { return Runtime::Current().heap.At(object, "the object of a property"); }

template <class T> Truth GetProperty(const void *object, const char *name, T *result) {
    std::optional<Value> value = GetHostProperty(Owner(object), name);
    if (!value || !value->Is<T>())
        return TruthOf(false);
    *result = value->As<T>();
    return TruthOf(true);
}

Truth GetStringProperty(const void *object, const char *name, void **result) {
    std::optional<Value> value = GetHostProperty(Owner(object), name);
    if (!value || !value->Is<std::string>())
        return TruthOf(false);
    *result = Runtime::Current().NewString(value->As<Text>()).address;
    return TruthOf(true);
}

Truth SetIntegerProperty(const void *object, const char *name, int32_t value) {
    if (!SetHostInteger(Owner(object), name, value))
        Stop(Owner(object).Describe() + " has no integer property " + name);
    return TruthOf(true);
}

Truth SetStringProperty(const void *object, const char *name, const void *string) {
    auto *text = Runtime::Current().heap.RequireOrNull<StringEntity>(string, "the value of a property");
    if (!SetHostString(Owner(object), name, text))
        Stop(Owner(object).Describe() + " has no string property " + name);
    return TruthOf(true);
}

} // namespace

std::span<const ServiceRow> PropertyServices() {
    static const ServiceRow rows[] = {
        Service<"REALGetPropValueInteger", GetProperty<int32_t>, Reach::kFirstName>(),
        Service<"REALGetPropValueInt", GetProperty<int32_t>>(),
        Service<"REALGetPropValueInt64", GetProperty<int64_t>>(),
        Service<"REALGetPropValueSingle", GetProperty<float>>(),
        Service<"REALGetPropValueDouble", GetProperty<double>>(),
        Service<"REALGetPropValueString", GetStringProperty>(),
        Service<"REALSetPropValueInteger", SetIntegerProperty, Reach::kFirstName>(),
        Service<"REALSetPropValueInt", SetIntegerProperty>(),
        Service<"REALSetPropValueString", SetStringProperty>(),
    };
    return rows;
}

} // namespace sim::host
