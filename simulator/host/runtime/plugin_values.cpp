#include "simulator/host/runtime/plugin_values.h"

#include "simulator/host/ground/stop.h"
#include "simulator/host/ground/text.h"
#include "simulator/host/runtime/runtime.h"

#include <bit>
#include <cstring>

namespace sim::host {

namespace {

void RequireInstanceOf(const Type &type, const Entity &entity, const std::string &what) {
    if (type.kind != TypeKind::kObject || EqualIgnoringCase(type.name, "object"))
        return;
    const Class *wanted = Runtime::Current().classes.Find(type.name);
    auto *instance = dynamic_cast<const Instance *>(&entity);
    if (!wanted || !instance || !instance->GetClass().IsA(*wanted))
        Stop("the plugin gave " + entity.Describe() + " as " + what);
}

/// A plugin knows two kinds of arrays only; what an array of objects holds shows when it is declared.
void RequireArrayOf(const Type &type, ArrayEntity &array) {
    bool bare = EqualIgnoringCase(array.TypeName(), "variant");
    if (array.Kind() != ElementKindOf(type.name) || (!bare && !EqualIgnoringCase(array.TypeName(), type.name)))
        Stop("the plugin gave " + array.Describe() + " as " + type.Describe());
    for (int32_t index = 0; array.Kind() == ElementKind::kObject && index < array.Count(); ++index)
        if (Entity *element = array.Held(index))
            RequireInstanceOf(type, *element, "an element of " + type.Describe());
    if (bare)
        array.DeclareAs(type.name);
}

Value CountedFromHandle(const Type &type, const void *handle, bool owned) {
    if (!handle)
        return nullptr;
    Runtime &runtime = Runtime::Current();
    Entity &entity = runtime.heap.At(handle, "a value from the plugin");
    Value value;
    if (type.isArray) {
        RequireArrayOf(type, runtime.heap.Require<ArrayEntity>(handle, "an array from the plugin"));
        value = Reference::Share(&entity);
    } else if (type.kind == TypeKind::kString) {
        value = runtime.heap.Require<StringEntity>(handle, "a string from the plugin").GetText();
    } else {
        RequireInstanceOf(type, entity, type.Describe());
        value = runtime.Unbox(&entity);
    }
    if (owned)
        runtime.heap.Unlock(entity);
    return value;
}

} // namespace

Value ValueFromWords(const Type &type, const Word *words, bool owned) {
    if (type.IsCounted())
        return CountedFromHandle(type, reinterpret_cast<const void *>(static_cast<uintptr_t>(words[0])), owned);
    uint64_t two = 0;
    switch (type.kind) {
    case TypeKind::kBoolean:
        return (words[0] & 0xFF) != 0;
    case TypeKind::kInt32:
        return static_cast<int32_t>(words[0]);
    case TypeKind::kUInt32:
        return words[0];
    case TypeKind::kSingle:
        return std::bit_cast<float>(words[0]);
    case TypeKind::kColor:
        return Color{words[0]};
    case TypeKind::kInt64:
        std::memcpy(&two, words, sizeof two);
        return static_cast<int64_t>(two);
    case TypeKind::kDouble:
        std::memcpy(&two, words, sizeof two);
        return std::bit_cast<double>(two);
    default:
        return nullptr;
    }
}

} // namespace sim::host
