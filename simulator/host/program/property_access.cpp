#include "simulator/host/program/property_access.h"

#include "simulator/host/classes/overloads.h"
#include "simulator/host/ground/stop.h"
#include "simulator/host/program/call_frame.h"
#include "simulator/host/runtime/plugin_values.h"

#include <cstring>

namespace sim::host {

namespace {

constexpr Word kStandardAccessor = 0xFFFFFFFF;

Value StandardGet(const Property &property, Instance &instance) {
    Word words[2];
    std::memcpy(words, instance.Data() + property.param, property.type.Words() * sizeof(Word));
    return ValueFromWords(property.type, words, false);
}

void StandardSet(const Property &property, Instance &instance, const Value &given) {
    Runtime &runtime = Runtime::Current();
    std::byte *field = instance.Data() + property.param;
    Value value = Widen(given, property.type);
    if (!property.type.IsCounted()) {
        if (property.type.kind != TypeKind::kInt32)
            Stop("a stored property of type " + property.type.name + " is not modelled");
        int32_t number = value.As<int32_t>();
        std::memcpy(field, &number, sizeof number);
        return;
    }
    bool isText = property.type.kind == TypeKind::kString && !value.IsNil();
    Entity *entity = isText ? &runtime.NewString(value.As<Text>()) : runtime.Box(value);
    void *before = nullptr;
    std::memcpy(&before, field, sizeof before);
    void *handle = entity ? entity->address : nullptr;
    std::memcpy(field, &handle, sizeof handle);
    if (before)
        runtime.heap.Unlock(runtime.heap.At(before, "a stored property"));
}

void RequireInside(const Property &property, const Instance &instance) {
    size_t end = static_cast<size_t>(property.param) + property.type.Words() * sizeof(Word);
    if (property.param < 0 || end > instance.DataSize())
        Stop("the property " + property.name + " lies outside the data of " + instance.Describe());
}

} // namespace

Value GetProperty(const Property &property, Instance &instance) {
    if (property.getter == kStandardAccessor) {
        RequireInside(property, instance);
        return StandardGet(property, instance);
    }
    ProgramCall call(instance.ClassName() + "." + property.name);
    HeardCall heard(Runtime::Current().heap.places.listener, Callee::kPlugin,
                    [&] { return instance.Describe() + "." + property.name; });
    Value result;
    {
        Frame frame;
        frame.PushInstance(&instance);
        frame.PushWord(static_cast<Word>(property.param));
        result = frame.Call(property.getter, property.type);
    }
    heard.Gives([&] { return result.Describe(); });
    call.Finish();
    return result;
}

void SetProperty(const Property &property, Instance &instance, const Value &value) {
    std::string what = instance.ClassName() + "." + property.name;
    if (!property.setter)
        throw ProgramError(what + " is read-only");
    if (!Distance(value, property.type))
        throw ProgramError(what + " as " + property.type.name + " does not take " + value.Describe());
    if (property.setter == kStandardAccessor) {
        RequireInside(property, instance);
        return StandardSet(property, instance, value);
    }
    ProgramCall call(what + " = ");
    const HeardCall heard(Runtime::Current().heap.places.listener, Callee::kPlugin,
                          [&] { return instance.Describe() + "." + property.name + " = " + value.Describe(); });
    {
        Frame frame;
        frame.PushInstance(&instance);
        frame.PushWord(static_cast<Word>(property.param));
        frame.Push(value, property.type);
        frame.Call(property.setter, Type());
    }
    call.Finish();
}

} // namespace sim::host
