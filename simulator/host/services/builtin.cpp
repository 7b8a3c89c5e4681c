// What is particular to the built-in classes: memory blocks, and the methods of dates, dictionaries and folder items
// that a plugin loads by declaration.
#include "simulator/host/ground/stop.h"
#include "simulator/host/runtime/runtime.h"
#include "simulator/host/services/table.h"

namespace sim::host {

namespace {

/// This host's memory ends there.
constexpr int32_t kLargestBlock = 1 << 30;

void *NewMemoryBlock(int32_t size) {
    if (size < 0 || size > kLargestBlock)
        return nullptr;
    auto *block = Runtime::Current().NewBuiltIn<MemoryBlockInstance>("MemoryBlock");
    if (!block)
        return nullptr;
    block->bytes.resize(static_cast<size_t>(size));
    return block->address;
}

MemoryBlockInstance &BlockAt(const void *block) {
    return Runtime::Current().heap.Require<MemoryBlockInstance>(block, "a memory block");
}

int32_t GetSize(const void *block) {
    MemoryBlockInstance &entity = BlockAt(block);
    return entity.reportedSize.value_or(static_cast<int32_t>(entity.bytes.size()));
}

void *GetPointer(const void *block) {
    MemoryBlockInstance &entity = BlockAt(block);
    return entity.bytes.empty() ? nullptr : entity.bytes.data();
}

DictionaryInstance &DictionaryAt(const void *dictionary) {
    return Runtime::Current().heap.Require<DictionaryInstance>(dictionary, "a dictionary");
}

Entity *VariantAt(const void *variant) { return variant ? &Runtime::Current().heap.At(variant, "a variant") : nullptr; }

void *Handed(Entity *entity) {
    if (entity)
        entity->heap->Lock(*entity);
    return entity ? entity->address : nullptr;
}

void SetDictionaryValue(const void *dictionary, const void *key, const void *value) {
    DictionaryAt(dictionary).Store(VariantAt(key), VariantAt(value));
}

void *GetDictionaryValue(const void *dictionary, const void *key) {
    if (const DictionaryInstance::Entry *entry = DictionaryAt(dictionary).Find(VariantAt(key)))
        return Handed(entry->value);
    Runtime::Current().Raise("KeyNotFoundException", "");
    return nullptr;
}

void *GetDictionaryKey(const void *dictionary, int32_t index) {
    const auto &entries = DictionaryAt(dictionary).Entries();
    if (index >= 0 && index < static_cast<int32_t>(entries.size()))
        return Handed(entries[static_cast<size_t>(index)].key);
    Runtime::Current().Raise("OutOfBoundsException", "");
    return nullptr;
}

void ConstructDate(const void *date, int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute,
                   int32_t second) {
    auto &instance = Runtime::Current().heap.Require<DateInstance>(date, "a date");
    instance.fields = {year, month, day, hour, minute, second};
}

/// Plugins load this method to recognise a folder item; none calls it.
void *TrueItem(const void *, int32_t) { Stop("a folder item's TrueItem was called, which is not modelled"); }

} // namespace

std::span<const ServiceRow> BuiltInServices() {
    constexpr Reach kMethod = Reach::kObjectMethod;
    static const ServiceRow rows[] = {
        Service<"newMemoryBlock", NewMemoryBlock>(),
        Service<"memoryBlockGetSize", GetSize>(),
        Service<"memoryBlockGetPtr", GetPointer>(),
        Service<"Dictionary.Value(key As Variant, Assigns _value As Variant)", SetDictionaryValue, kMethod>(),
        Service<"Dictionary.Value(key As Variant) As Variant", GetDictionaryValue, kMethod>(),
        Service<"Dictionary.Key(index As Integer) As Variant", GetDictionaryKey, kMethod>(),
        Service<"Date.Year as Integer, Month as Integer = 1, Day as Integer = 1, hour as Integer = 0, "
                "minute as Integer = 0, second as Integer = 0",
                ConstructDate, kMethod>(),
        Service<"FolderItem.TrueItem(Index as integer) as Folderitem", TrueItem, kMethod>(),
    };
    return rows;
}

} // namespace sim::host
