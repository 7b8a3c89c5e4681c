// One result of a query: a file, what the query knows of it, and the item object once somebody has asked for it.
#pragma once

#include "simulator/macos/CoreFoundation/ref.h"
#include "simulator/macos/CoreServices/metadata/items/attribute_source.h"

#include <CoreServices/MDItem.h>

#include <cstdint>
#include <memory>
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

    std::size_t index = 0; // kept by the list

private:
    FileIdentity file_;
    std::uint64_t arrival_;
    std::shared_ptr<const AttributeSource> source_;
    std::vector<CFRef<CFTypeRef>> values_;
    CFRef<MDItemRef> item_;
};

} // namespace sim::macos::query
