#include "simulator/language/builtin.h"
#include "simulator/language/program_object.h"

namespace sim::language {

namespace {

host::DictionaryInstance &DictionaryAt(const host::Object &object) {
    return dynamic_cast<host::DictionaryInstance &>(*object.Get());
}

const host::DictionaryInstance::Entry *Find(const Call &call) {
    const host::Object key = call.execution.Host().Box(call.arguments[0]);
    return DictionaryAt(call.self).Find(key.Get());
}

host::Value GetValue(Call &call) {
    const auto *entry = Find(call);
    if (!entry)
        call.execution.Raise("KeyNotFoundException", "the dictionary has no key " + call.arguments[0].Describe(),
                             call.where);
    return host::Runtime::Current().Unbox(entry->value);
}

host::Value SetValue(Call &call) {
    call.self.Store(call.arguments[0], call.arguments[1]);
    return {};
}

host::Value HasKey(Call &call) { return Find(call) != nullptr; }

host::Value Lookup(Call &call) {
    const auto *entry = Find(call);
    return entry ? host::Runtime::Current().Unbox(entry->value) : call.arguments[1];
}

host::Value GetKey(Call &call) {
    const auto &entries = DictionaryAt(call.self).Entries();
    const int32_t index = IntegerAt(call, 0);
    if (index < 0 || static_cast<size_t>(index) >= entries.size())
        call.execution.Raise("OutOfBoundsException", "the dictionary has no key at that index", call.where);
    return host::Runtime::Current().Unbox(entries[static_cast<size_t>(index)].key);
}

host::Value Keys(Call &call) {
    host::Object keys = call.execution.Host().NewArray("variant");
    for (const auto &[key, value] : call.self.Entries())
        keys.Append(key);
    return keys;
}

host::Value Values(Call &call) {
    host::Object values = call.execution.Host().NewArray("variant");
    for (const auto &[key, value] : call.self.Entries())
        values.Append(value);
    return values;
}

host::Value Remove(Call &call) {
    const host::Object key = call.execution.Host().Box(call.arguments[0]);
    if (!DictionaryAt(call.self).Remove(key.Get()))
        call.execution.Raise("KeyNotFoundException", "the dictionary has no key " + call.arguments[0].Describe(),
                             call.where);
    return {};
}

host::Value Clear(Call &call) {
    DictionaryAt(call.self).Clear();
    return {};
}

host::Value Count(Call &call) { return static_cast<int32_t>(DictionaryAt(call.self).Entries().size()); }

constexpr FunctionRow kDictionaryFunctions[] = {
    {"Value(key As Variant) As Variant", GetValue},
    {"Value(key As Variant, Assigns value As Variant)", SetValue},
    {"HasKey(key As Variant) As Boolean", HasKey},
    {"Lookup(key As Variant, default As Variant) As Variant", Lookup},
    {"Key(index As Integer) As Variant", GetKey},
    {"Keys As Variant()", Keys},
    {"Values As Variant()", Values},
    {"Remove(key As Variant)", Remove},
    {"Clear", Clear},
};

constexpr PropertyRow kDictionaryProperties[] = {{"Count As Integer", Count}};

} // namespace

const BuiltInClass &DictionaryClass() {
    static constexpr BuiltInClass row{"Dictionary", nullptr, MakeInstance<host::DictionaryInstance>,
                                      kDictionaryFunctions, kDictionaryProperties};
    return row;
}

} // namespace sim::language
