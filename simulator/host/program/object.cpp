// What the program can do with one of its objects: references, methods, properties, events, arrays, built-in classes.
#include "simulator/host/classes/overloads.h"
#include "simulator/host/ground/text.h"
#include "simulator/host/program/calls.h"
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

Object Object::Adopt(Entity *entity) {
    if (entity)
        ++entity->programReferences;
    return Object(entity);
}

Object Object::Share(Entity *entity) {
    if (entity)
        entity->heap->Lock(*entity);
    return Adopt(entity);
}

Object::Object(const Object &other) : Object(Share(other.entity_)) {}

Object::Object(Object &&other) noexcept : entity_(std::exchange(other.entity_, nullptr)) {}

Object &Object::operator=(Object other) noexcept {
    std::swap(entity_, other.entity_);
    return *this;
}

Object::~Object() {
    if (!entity_)
        return;
    --entity_->programReferences;
    entity_->heap->Unlock(*entity_);
}

std::string Object::ClassName() const { return entity_ ? entity_->ClassName() : "nil"; }

int32_t Object::TypeCode() const { return entity_ ? entity_->TypeCode() : 0; }

void *Object::Address() const { return entity_ ? entity_->address : nullptr; }

void *Object::Data() const {
    auto *instance = dynamic_cast<Instance *>(entity_);
    return instance && instance->GetClass().HasData() ? instance->Data() : nullptr;
}

int32_t Object::References() const { return entity_ ? entity_->references : 0; }

Value Object::CallWith(std::string_view method, std::vector<Value> arguments) const {
    const Class &itsClass = Require<Instance>(entity_, "an instance").GetClass();
    const Method &chosen = ChooseMethod(itsClass.name, itsClass.methods, method, arguments);
    return CallMethod(itsClass.name, chosen, entity_, std::move(arguments));
}

Value Object::GetValue(std::string_view name) const {
    if (auto *instance = dynamic_cast<Instance *>(entity_);
        instance && instance->GetClass().kind == ClassKind::kPlugin) {
        if (const Property *property = FindProperty(instance->GetClass(), name))
            return GetProperty(*property, *instance);
        return CallWith(name, {});
    }
    if (entity_)
        if (std::optional<Value> value = GetHostProperty(*entity_, name))
            return *value;
    throw ProgramError(Value(*this).Describe() + " has no property " + std::string(name) + " that can be read");
}

void Object::Set(std::string_view name, const Value &value) const {
    auto &instance = Require<Instance>(entity_, "an instance");
    const Class &itsClass = instance.GetClass();
    if (const Property *property = FindProperty(itsClass, name))
        SetProperty(*property, instance, value);
    else if (const Method *pair = FindPair(itsClass, name))
        CallSetter(itsClass.name, *pair, entity_, value);
    else if (!value.Is<int32_t>() || !SetHostInteger(instance, name, value.As<int32_t>()))
        throw ProgramError(itsClass.name + " has no property " + std::string(name) + " that can be set to " +
                           value.Describe());
}

void Object::OnEvent(std::string_view event, std::function<void(const EventCall &)> handler) const {
    auto &instance = Require<Instance>(entity_, "an instance");
    instance.handlers[FindEvent(instance.GetClass(), event)] = std::move(handler);
}

void Object::RemoveEvent(std::string_view event) const {
    auto &instance = Require<Instance>(entity_, "an instance");
    instance.handlers.erase(FindEvent(instance.GetClass(), event));
}

int32_t Object::UpperBound() const { return Require<ArrayEntity>(entity_, "an array").Count() - 1; }

Value Object::At(int32_t index) const {
    auto &array = Require<ArrayEntity>(entity_, "an array");
    RequireIndex(array, index);
    return Runtime::Current().ElementOf(array, index);
}

std::vector<Value> Object::Elements() const {
    auto &array = Require<ArrayEntity>(entity_, "an array");
    std::vector<Value> elements;
    for (int32_t index = 0; index < array.Count(); ++index)
        elements.push_back(Runtime::Current().ElementOf(array, index));
    return elements;
}

void Object::Append(const Value &value) const {
    auto &array = Require<ArrayEntity>(entity_, "an array");
    array.Resize(array.Count() + 1);
    Runtime::Current().PutElement(array, array.Count() - 1, value);
}

void Object::Put(int32_t index, const Value &value) const {
    auto &array = Require<ArrayEntity>(entity_, "an array");
    RequireIndex(array, index);
    Runtime::Current().PutElement(array, index, value);
}

void Object::Resize(int32_t upperBound) const { Require<ArrayEntity>(entity_, "an array").Resize(upperBound + 1); }

DateFields Object::Date() const { return Require<DateInstance>(entity_, "a date").fields; }

void Object::MakeDateUnreadable() const { Require<DateInstance>(entity_, "a date").readable = false; }

std::vector<std::pair<Value, Value>> Object::Entries() const {
    Runtime &runtime = Runtime::Current();
    std::vector<std::pair<Value, Value>> pairs;
    for (const DictionaryInstance::Entry &entry : RequireDictionary(entity_).Entries())
        pairs.emplace_back(runtime.Unbox(entry.key), runtime.Unbox(entry.value));
    return pairs;
}

Value Object::Lookup(const Value &key) const {
    Runtime &runtime = Runtime::Current();
    Object boxed = Object::Adopt(runtime.Box(key));
    const DictionaryInstance::Entry *entry = RequireDictionary(entity_).Find(boxed.Get());
    return entry ? runtime.Unbox(entry->value) : Value();
}

void Object::Store(const Value &key, const Value &value) const {
    Runtime &runtime = Runtime::Current();
    Object boxedKey = Object::Adopt(runtime.Box(key));
    Object boxedValue = Object::Adopt(runtime.Box(value));
    RequireDictionary(entity_).Store(boxedKey.Get(), boxedValue.Get());
}

std::string Object::Bytes() const {
    const auto &bytes = Require<MemoryBlockInstance>(entity_, "a memory block").bytes;
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

void Object::ReportSize(int32_t size) const {
    Require<MemoryBlockInstance>(entity_, "a memory block").reportedSize = size;
}

std::string Object::Path() const { return Require<FolderItemInstance>(entity_, "a folder item").path; }

} // namespace sim::host
