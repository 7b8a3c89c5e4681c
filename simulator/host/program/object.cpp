#include "simulator/host/program/object.h"

#include "simulator/host/classes/overloads.h"
#include "simulator/host/ground/text.h"
#include "simulator/host/program/calls.h"
#include "simulator/host/program/property_access.h"
#include "simulator/host/runtime/runtime.h"

namespace sim::host {

namespace {

template <class T> T &Require(Entity *entity, const char *what) {
    if (auto *required = dynamic_cast<T *>(entity))
        return *required;
    throw ProgramError((entity ? entity->Describe() : std::string("nil")) + " is not " + what);
}

const Property *FindProperty(const Class &itsClass, std::string_view name) {
    for (const Property &property : itsClass.properties)
        if (EqualIgnoringCase(property.name, name))
            return &property;
    return nullptr;
}

const Method *FindPair(const Class &itsClass, std::string_view name) {
    for (const Method &method : itsClass.methods)
        if (method.setterFunction && EqualIgnoringCase(method.declaration.name, name))
            return &method;
    return nullptr;
}

size_t FindEvent(const Class &itsClass, std::string_view name) {
    for (size_t index = 0; index < itsClass.events.size(); ++index)
        if (EqualIgnoringCase(itsClass.events[index].declaration.name, name))
            return index;
    throw ProgramError(itsClass.name + " has no event " + std::string(name));
}

void RequireIndex(const ArrayEntity &array, int32_t index) {
    if (!array.Has(index))
        throw ProgramError(array.Describe() + " has no element " + std::to_string(index));
}

DictionaryInstance &RequireDictionary(Entity *entity) { return Require<DictionaryInstance>(entity, "a dictionary"); }

} // namespace

void *Object::Data() const {
    auto *instance = dynamic_cast<Instance *>(Get());
    return instance && instance->GetClass().HasData() ? instance->Data() : nullptr;
}

Value Object::CallWith(std::string_view method, std::vector<Value> arguments) const {
    const Class &itsClass = Require<Instance>(Get(), "an instance").GetClass();
    const Method &chosen = ChooseMethod(itsClass.name, itsClass.methods, method, arguments);
    return CallMethod(itsClass.name, chosen, Get(), std::move(arguments));
}

Value Object::GetValue(std::string_view name) const {
    if (auto *instance = dynamic_cast<Instance *>(Get()); instance && instance->GetClass().kind == ClassKind::kPlugin) {
        if (const Property *property = FindProperty(instance->GetClass(), name))
            return GetProperty(*property, *instance);
        return CallWith(name, {});
    }
    if (Get())
        if (std::optional<Value> value = GetHostProperty(*Get(), name))
            return *value;
    throw ProgramError(Describe() + " has no property " + std::string(name) + " that can be read");
}

void Object::Set(std::string_view name, const Value &value) const {
    auto &instance = Require<Instance>(Get(), "an instance");
    const Class &itsClass = instance.GetClass();
    if (const Property *property = FindProperty(itsClass, name))
        SetProperty(*property, instance, value);
    else if (const Method *pair = FindPair(itsClass, name))
        CallSetter(itsClass.name, *pair, Get(), value);
    else if (!value.Is<int32_t>() || !SetHostInteger(instance, name, value.As<int32_t>()))
        throw ProgramError(itsClass.name + " has no property " + std::string(name) + " that can be set to " +
                           value.Describe());
}

void Object::OnEvent(std::string_view event, std::function<void(const EventCall &)> handler) const {
    auto &instance = Require<Instance>(Get(), "an instance");
    instance.handlers[FindEvent(instance.GetClass(), event)] =
        [handler = std::move(handler)](Instance &raising, const std::string &name, std::vector<Value> arguments) {
            handler({Share(&raising), name, std::move(arguments)});
        };
}

void Object::RemoveEvent(std::string_view event) const {
    auto &instance = Require<Instance>(Get(), "an instance");
    instance.handlers.erase(FindEvent(instance.GetClass(), event));
}

int32_t Object::UpperBound() const { return Require<ArrayEntity>(Get(), "an array").Count() - 1; }

Value Object::At(int32_t index) const {
    auto &array = Require<ArrayEntity>(Get(), "an array");
    RequireIndex(array, index);
    return Runtime::Current().ElementOf(array, index);
}

std::vector<Value> Object::Elements() const {
    auto &array = Require<ArrayEntity>(Get(), "an array");
    std::vector<Value> elements;
    for (int32_t index = 0; index < array.Count(); ++index)
        elements.push_back(Runtime::Current().ElementOf(array, index));
    return elements;
}

void Object::Append(const Value &value) const {
    auto &array = Require<ArrayEntity>(Get(), "an array");
    array.Resize(array.Count() + 1);
    Runtime::Current().PutElement(array, array.Count() - 1, value);
}

void Object::Put(int32_t index, const Value &value) const {
    auto &array = Require<ArrayEntity>(Get(), "an array");
    RequireIndex(array, index);
    Runtime::Current().PutElement(array, index, value);
}

void Object::Resize(int32_t upperBound) const { Require<ArrayEntity>(Get(), "an array").Resize(upperBound + 1); }

DateFields Object::Date() const { return Require<DateInstance>(Get(), "a date").fields; }

void Object::MakeDateUnreadable() const { Require<DateInstance>(Get(), "a date").readable = false; }

std::vector<std::pair<Value, Value>> Object::Entries() const {
    Runtime &runtime = Runtime::Current();
    std::vector<std::pair<Value, Value>> pairs;
    for (const DictionaryInstance::Entry &entry : RequireDictionary(Get()).Entries())
        pairs.emplace_back(runtime.Unbox(entry.key), runtime.Unbox(entry.value));
    return pairs;
}

Value Object::Lookup(const Value &key) const {
    Runtime &runtime = Runtime::Current();
    Object boxed = Object::Adopt(runtime.Box(key));
    const DictionaryInstance::Entry *entry = RequireDictionary(Get()).Find(boxed.Get());
    return entry ? runtime.Unbox(entry->value) : Value();
}

void Object::Store(const Value &key, const Value &value) const {
    Runtime &runtime = Runtime::Current();
    Object boxedKey = Object::Adopt(runtime.Box(key));
    Object boxedValue = Object::Adopt(runtime.Box(value));
    RequireDictionary(Get()).Store(boxedKey.Get(), boxedValue.Get());
}

std::string Object::Bytes() const {
    const auto &bytes = Require<MemoryBlockInstance>(Get(), "a memory block").bytes;
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

void Object::ReportSize(int32_t size) const {
    Require<MemoryBlockInstance>(Get(), "a memory block").reportedSize = size;
}

std::string Object::Path() const { return Require<FolderItemInstance>(Get(), "a folder item").path; }

} // namespace sim::host
