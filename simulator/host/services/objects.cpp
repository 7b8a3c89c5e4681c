// Objects and their references, classes, and exceptions. Unlocking null does nothing; a dead handle stops the host.
#include "simulator/host/runtime/runtime.h"
#include "simulator/host/services/table.h"
#include "simulator/host/services/truth.h"

namespace sim::host {

namespace {

void *NewInstance(const char *className) {
    Instance *instance = Runtime::Current().NewInstanceNamed(className ? className : "");
    return instance ? instance->address : nullptr;
}

const void *ObjectType(const char *className) { return Runtime::Current().classes.Find(className ? className : ""); }

Truth ObjectIsA(const void *object, const void *reference) {
    Runtime &runtime = Runtime::Current();
    const Class &wanted = runtime.classes.Behind(reference);
    if (!object)
        return TruthOf(false);
    auto *instance = dynamic_cast<Instance *>(&runtime.heap.At(object, "the object of \"RuntimeObjectIsa\""));
    return TruthOf(instance && instance->GetClass().IsA(wanted));
}

/// Objects, variants and arrays are counted alike; strings have services of their own.
Entity &ObjectAt(const void *object) {
    Entity &entity = Runtime::Current().heap.At(object, "an object");
    if (dynamic_cast<StringEntity *>(&entity))
        Runtime::Current().heap.Require<Instance>(object, "an object");
    return entity;
}

void LockObject(const void *object) {
    if (object)
        Runtime::Current().heap.Lock(ObjectAt(object));
}

void UnlockObject(const void *object) {
    if (object)
        Runtime::Current().heap.Unlock(ObjectAt(object));
}

void RaiseException(const void *object) {
    Runtime &runtime = Runtime::Current();
    auto &exception = runtime.heap.Require<ExceptionInstance>(object, "an exception");
    RaisedException raised;
    raised.className = exception.ClassName();
    raised.errorNumber = exception.errorNumber;
    if (exception.message) {
        raised.message = ToUTF8(exception.message->GetText());
        raised.messageEncoding = exception.message->GetText().encoding;
    }
    runtime.raised.push_back(std::move(raised));
}

} // namespace

std::span<const ServiceRow> ObjectServices() {
    static const ServiceRow rows[] = {
        Service<"PluginNewInstance", NewInstance>(), Service<"pluginObjectType", ObjectType>(),
        Service<"RuntimeObjectIsa", ObjectIsA>(),    Service<"REALLockObject", LockObject>(),
        Service<"REALUnlockObject", UnlockObject>(), Service<"RuntimeRaiseException", RaiseException>(),
    };
    return rows;
}

} // namespace sim::host
