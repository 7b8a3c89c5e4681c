// The host's own classes: what "Date", "Dictionary", "MemoryBlock", "FolderItem" and exception objects hold, and what
// they answer when a property is read or set by name.
#pragma once

#include "simulator/host/classes/instance.h"

#include <optional>
#include <vector>

namespace sim::host {

class DateInstance : public Instance {
public:
    using Instance::Instance;
    int32_t TypeCode() const override { return 7; }

    DateFields fields;
    bool readable = true;
};

/// Pairs in the order of their insertion. Keys are equal when they are equal numbers, the same characters, dates with
/// equal fields, or the same object; a nil key is a key like any other.
class DictionaryInstance : public Instance {
public:
    struct Entry {
        Entity *key;
        Entity *value;
    };

    using Instance::Instance;
    void VisitHeld(const Visitor &visitor) const override;
    void Die() override;

    /// Takes references of its own. An equal key keeps its place and gets the new value.
    void Store(Entity *key, Entity *value);
    /// Null when there is no such key.
    const Entry *Find(Entity *key) const;
    /// False when there is no such key.
    bool Remove(Entity *key);
    void Clear();
    const std::vector<Entry> &Entries() const { return entries_; }

private:
    void GiveUp(const Entry &entry) const;

    std::vector<Entry> entries_;
};

class MemoryBlockInstance : public Instance {
public:
    using Instance::Instance;

    std::vector<std::byte> bytes;
    std::optional<int32_t> reportedSize;
};

class FolderItemInstance : public Instance {
public:
    using Instance::Instance;

    /// Empty when it names nothing.
    std::string path;
    /// What the File Manager is told instead of the path's last part.
    std::optional<std::u16string> name;
};

class ExceptionInstance : public Instance {
public:
    using Instance::Instance;
    void VisitHeld(const Visitor &visitor) const override;
    void Die() override;

    class StringEntity *message = nullptr;
    std::optional<int32_t> errorNumber;
};

/// A property that the host itself knows: a date's fields, "Count", "Size", and "Type", "StringValue" and the like of
/// anything that can be a Variant. Nothing when there is none of that name, or it cannot be read.
std::optional<Value> GetHostProperty(const Entity &entity, std::string_view name);
/// False when there is no such property to set.
bool SetHostInteger(Entity &entity, std::string_view name, int32_t value);
bool SetHostString(Entity &entity, std::string_view name, StringEntity *string);

} // namespace sim::host
