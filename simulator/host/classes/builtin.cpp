#include "simulator/host/classes/builtin.h"

#include "simulator/host/entities/string_entity.h"
#include "simulator/host/entities/variant_entity.h"
#include "simulator/host/ground/text.h"

#include <algorithm>
#include <utility>

namespace sim::host {

namespace {

struct FieldRow {
    std::string_view name;
    int32_t DateFields::*field;
};

constexpr FieldRow kDateFields[] = {
    {"Year", &DateFields::year}, {"Month", &DateFields::month},   {"Day", &DateFields::day},
    {"Hour", &DateFields::hour}, {"Minute", &DateFields::minute}, {"Second", &DateFields::second},
};

bool IsNumber(const Value &value) {
    return value.Is<int32_t>() || value.Is<uint32_t>() || value.Is<int64_t>() || value.Is<float>() ||
           value.Is<double>();
}

bool EqualKeys(const Entity *left, const Entity *right) {
    if (left == right)
        return true;
    if (!left || !right)
        return false;
    if (auto *leftDate = dynamic_cast<const DateInstance *>(left)) {
        auto *rightDate = dynamic_cast<const DateInstance *>(right);
        return rightDate && leftDate->fields == rightDate->fields;
    }
    auto *leftBox = dynamic_cast<const VariantEntity *>(left);
    auto *rightBox = dynamic_cast<const VariantEntity *>(right);
    if (!leftBox || !rightBox)
        return false;
    const Value &a = leftBox->Held(), &b = rightBox->Held();
    if (!IsNumber(a) || !IsNumber(b))
        return a == b;
    bool floating = a.Is<float>() || a.Is<double>() || b.Is<float>() || b.Is<double>();
    return floating ? ToDouble(a) == ToDouble(b) : ToInteger(a) == ToInteger(b);
}

std::optional<Value> GetVariantProperty(const Value &held, std::string_view name) {
    if (EqualIgnoringCase(name, "Int32Value") || EqualIgnoringCase(name, "IntegerValue"))
        return static_cast<int32_t>(ToInteger(held));
    if (EqualIgnoringCase(name, "LongValue") || EqualIgnoringCase(name, "Int64Value"))
        return ToInteger(held);
    if (EqualIgnoringCase(name, "SingleValue"))
        return static_cast<float>(ToDouble(held));
    if (EqualIgnoringCase(name, "DoubleValue"))
        return ToDouble(held);
    if (EqualIgnoringCase(name, "BooleanValue"))
        return ToInteger(held) != 0;
    if (EqualIgnoringCase(name, "StringValue"))
        if (std::optional<Text> text = ToText(held))
            return *text;
    return std::nullopt;
}

std::optional<Value> GetDateProperty(const DateInstance &date, std::string_view name) {
    if (!date.readable)
        return std::nullopt;
    for (const FieldRow &row : kDateFields)
        if (EqualIgnoringCase(row.name, name))
            return date.fields.*row.field;
    return std::nullopt;
}

std::optional<Value> GetExceptionProperty(const ExceptionInstance &exception, std::string_view name) {
    if (EqualIgnoringCase(name, "ErrorNumber"))
        return exception.errorNumber.value_or(0);
    if (EqualIgnoringCase(name, "Message") && exception.message)
        return exception.message->GetText();
    return std::nullopt;
}

} // namespace

void DictionaryInstance::VisitHeld(const Visitor &visitor) const {
    for (const Entry &entry : entries_) {
        if (entry.key)
            visitor(*entry.key);
        if (entry.value)
            visitor(*entry.value);
    }
}

void DictionaryInstance::Die() {
    Clear();
    Instance::Die();
}

void DictionaryInstance::GiveUp(const Entry &entry) const {
    if (entry.key)
        heap->Unlock(*entry.key);
    if (entry.value)
        heap->Unlock(*entry.value);
}

void DictionaryInstance::Clear() {
    for (const Entry &entry : std::exchange(entries_, {}))
        GiveUp(entry);
}

bool DictionaryInstance::Remove(Entity *key) {
    const Entry *found = Find(key);
    if (!found)
        return false;
    const Entry removed = *found;
    entries_.erase(entries_.begin() + (found - entries_.data()));
    GiveUp(removed);
    return true;
}

void DictionaryInstance::Store(Entity *key, Entity *value) {
    if (value)
        heap->Lock(*value);
    auto found =
        std::find_if(entries_.begin(), entries_.end(), [key](const Entry &entry) { return EqualKeys(entry.key, key); });
    if (found != entries_.end()) {
        if (Entity *before = std::exchange(found->value, value))
            heap->Unlock(*before);
        return;
    }
    if (key)
        heap->Lock(*key);
    entries_.push_back({key, value});
}

const DictionaryInstance::Entry *DictionaryInstance::Find(Entity *key) const {
    auto found =
        std::find_if(entries_.begin(), entries_.end(), [key](const Entry &entry) { return EqualKeys(entry.key, key); });
    return found == entries_.end() ? nullptr : &*found;
}

void ExceptionInstance::VisitHeld(const Visitor &visitor) const {
    if (message)
        visitor(*message);
}

void ExceptionInstance::Die() {
    if (message)
        heap->Unlock(*std::exchange(message, nullptr));
    Instance::Die();
}

std::optional<Value> GetHostProperty(const Entity &entity, std::string_view name) {
    if (auto *date = dynamic_cast<const DateInstance *>(&entity); date && !EqualIgnoringCase(name, "Type"))
        return GetDateProperty(*date, name);
    if (EqualIgnoringCase(name, "Type"))
        return entity.TypeCode();
    if (auto *variant = dynamic_cast<const VariantEntity *>(&entity))
        return GetVariantProperty(variant->Held(), name);
    if (auto *dictionary = dynamic_cast<const DictionaryInstance *>(&entity);
        dictionary && EqualIgnoringCase(name, "Count"))
        return static_cast<int32_t>(dictionary->Entries().size());
    if (auto *block = dynamic_cast<const MemoryBlockInstance *>(&entity); block && EqualIgnoringCase(name, "Size"))
        return block->reportedSize.value_or(static_cast<int32_t>(block->bytes.size()));
    if (auto *exception = dynamic_cast<const ExceptionInstance *>(&entity))
        return GetExceptionProperty(*exception, name);
    return std::nullopt;
}

bool SetHostInteger(Entity &entity, std::string_view name, int32_t value) {
    if (auto *exception = dynamic_cast<ExceptionInstance *>(&entity);
        exception && EqualIgnoringCase(name, "ErrorNumber")) {
        exception->errorNumber = value;
        return true;
    }
    if (auto *date = dynamic_cast<DateInstance *>(&entity))
        for (const FieldRow &row : kDateFields)
            if (EqualIgnoringCase(row.name, name)) {
                date->fields.*row.field = value;
                return true;
            }
    return false;
}

bool SetHostString(Entity &entity, std::string_view name, StringEntity *string) {
    auto *exception = dynamic_cast<ExceptionInstance *>(&entity);
    if (!exception || !EqualIgnoringCase(name, "Message"))
        return false;
    if (string)
        entity.heap->Lock(*string);
    if (StringEntity *before = std::exchange(exception->message, string))
        entity.heap->Unlock(*before);
    return true;
}

} // namespace sim::host
