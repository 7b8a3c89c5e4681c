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

    /// Makes the key by which the list sorts. Due after every change of the source or of the order.
    void MakeKey(const SortOrder &order);
    /// Results whose keys do not tell them apart stand in the order of arrival.
    bool StandsBefore(const Result &other) const {
        const int order = key_.compare(other.key_);
        return order != 0 ? order < 0 : arrival_ < other.arrival_;
    }

    std::size_t index = 0; // kept by the list

private:
    FileIdentity file_;
    std::uint64_t arrival_;
    std::shared_ptr<const AttributeSource> source_;
    std::vector<CFRef<CFTypeRef>> values_;
    CFRef<MDItemRef> item_;
    std::string key_;
};

} // namespace sim::macos::query
