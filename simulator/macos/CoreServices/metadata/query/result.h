// One result of a query: a file, what the query knows of it, and the item object once somebody has asked for it.
#pragma once

#include "simulator/macos/CoreFoundation/ref.h"
#include "simulator/macos/CoreServices/metadata/items/attribute_source.h"
#include "simulator/macos/CoreServices/metadata/query/sort_order.h"

#include <CoreServices/MDItem.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace sim::macos::query {

class Result {
public:
    Result(const FileIdentity &file, std::uint64_t arrival) : file_(file), arrival_(arrival) {}

    const FileIdentity &File() const { return file_; }
    std::uint64_t Arrival() const { return arrival_; }

    /// Takes over the attributes as they are now: the values of the given names are read, and an item that was made
    /// speaks of the new state too.
    void SetSource(std::shared_ptr<const AttributeSource> source, const std::vector<std::string> &names);

    /// Borrowed; null when the file lacks the attribute.
    CFTypeRef Value(std::size_t name) const { return values_[name].Get(); }

    bool HasItem() const { return static_cast<bool>(item_); }
    /// Borrowed; made now if it has not been before.
    MDItemRef Item();

    /// Results that the order does not tell apart stand in the order of arrival.
    bool StandsBefore(const Result &other, const SortOrder &order) const;
    /// Due when results are to be sorted by other attributes.
    void ForgetKeys() { keys_.clear(); }

    std::size_t index = 0; // kept by the list

private:
    const std::string &Key(std::size_t part, const SortOrder &order) const {
        return part < keys_.size() ? keys_[part] : MakeKey(part, order);
    }
    const std::string &MakeKey(std::size_t part, const SortOrder &order) const;

    FileIdentity file_;
    std::uint64_t arrival_;
    std::shared_ptr<const AttributeSource> source_;
    std::vector<CFRef<CFTypeRef>> values_;
    CFRef<MDItemRef> item_;
    mutable std::vector<std::string> keys_; // of the first parts of the order, as far as they were needed
};

} // namespace sim::macos::query
