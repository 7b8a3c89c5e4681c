#include "plugin/old_records.h"

#include <cstdlib>
#include <cstring>

#include "host/capabilities.h"

namespace {

/// An old record is the first words of the current one.
struct Prefix {
    uint32_t currentWords;
    uint32_t oldWords;
};
constexpr Prefix kProperty{12, 10};
constexpr Prefix kMethod{6, 4};
constexpr Prefix kEvent{4, 2};
constexpr Prefix kConstant{5, 3};

/// A new array of old records. It is never freed: the host keeps its address. Null for no rows, or when there is no
/// memory.
uint32_t *CopyOldRecords(const void *rows, uint32_t count, Prefix prefix) {
    const uint64_t size = uint64_t{count} * prefix.oldWords * kWord;
    if (!rows || size < 1 || size > INT32_MAX)
        return nullptr;
    auto *copy = static_cast<uint32_t *>(std::calloc(1, static_cast<size_t>(size)));
    if (!copy)
        return nullptr;
    const auto *words = static_cast<const uint32_t *>(rows);
    for (uint32_t i = 0; i < count; i++)
        std::memcpy(copy + i * prefix.oldWords, words + i * prefix.currentWords, prefix.oldWords * kWord);
    return copy;
}

/// Points a table at the old form of its rows. The count stays.
template <class Row> void ConvertRecordTable(Table<Row> &table, Prefix prefix) {
    table.rows = reinterpret_cast<Row *>(CopyOldRecords(table.rows, table.count, prefix));
}

/// Deliberate: each event of the plugin's own table is left pointing at the copy that the host gets, because the host
/// writes what it knows the event by into that copy.
void ConvertEventRecords(Table<REALevent> &events) {
    REALevent *rows = events.rows;
    uint32_t *copy = CopyOldRecords(rows, events.count, kEvent);
    for (uint32_t i = 0; copy && i < events.count; i++)
        rows[i].forSystemUse = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(copy + i * kEvent.oldWords));
    events.rows = reinterpret_cast<REALevent *>(copy);
}

} // namespace

REALproperty *FixProperties(const REALproperty *properties, uint32_t count) {
    return reinterpret_cast<REALproperty *>(CopyOldRecords(properties, count, kProperty));
}

void ConvertToOldRecords(REALclassDefinition &record) {
    record.properties.rows = FixProperties(record.properties.rows, record.properties.count);
    ConvertRecordTable(record.methods, kMethod);
    ConvertEventRecords(record.events);
    record.bindDescriptions = nullptr;
    record.bindDescriptionCount = 0;
    ConvertRecordTable(record.constants, kConstant);
    ConvertRecordTable(record.sharedMethods, kMethod);
    record.sharedProperties.rows = FixProperties(record.sharedProperties.rows, record.sharedProperties.count);
}
