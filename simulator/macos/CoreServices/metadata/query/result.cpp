#include "simulator/macos/CoreServices/metadata/query/result.h"

#include "simulator/macos/CoreServices/metadata/items/item.h"
#include "simulator/macos/CoreServices/metadata/query/sort_key.h"

#include <CoreServices/MDQuery.h>

#include <utility>

namespace sim::macos::query {

void Result::SetSource(std::shared_ptr<const AttributeSource> source, const std::vector<std::string> &names) {
    source_ = std::move(source);
    values_.clear();
    keys_.clear();
    values_.reserve(names.size());
    for (const std::string &name : names)
        values_.push_back(CFRef<CFTypeRef>::Adopt(source_->Copy(name)));
    if (item_)
        macos::Item::From(item_.Get())->SetSource(source_);
}

const std::string &Result::MakeKey(std::size_t part, const SortOrder &order) const {
    while (keys_.size() <= part)
        keys_.push_back(SortKeyOf(Value(order[keys_.size()].name)));
    return keys_[part];
}

bool Result::StandsBefore(const Result &other, const SortOrder &order) const {
    for (std::size_t part = 0; part < order.size(); ++part) {
        const int comparison = Key(part, order).compare(other.Key(part, order));
        if (comparison != 0)
            return (comparison < 0) != ((order[part].flags & kMDQueryReverseSortOrderFlag) != 0);
    }
    return arrival_ < other.arrival_;
}

MDItemRef Result::Item() {
    if (!item_)
        item_ = CFRef<MDItemRef>::Adopt(macos::Item::Create(source_));
    return item_.Get();
}

} // namespace sim::macos::query
