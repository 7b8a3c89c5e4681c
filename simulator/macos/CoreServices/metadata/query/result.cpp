#include "simulator/macos/CoreServices/metadata/query/result.h"

#include "simulator/macos/CoreServices/metadata/items/item.h"
#include "simulator/macos/CoreServices/metadata/query/sort_key.h"

#include <CoreServices/MDQuery.h>

#include <utility>

namespace sim::macos::query {

void Result::SetSource(std::shared_ptr<const AttributeSource> source, const std::vector<std::string> &names) {
    source_ = std::move(source);
    values_.clear();
    values_.reserve(names.size());
    for (const std::string &name : names)
        values_.push_back(CFRef<CFTypeRef>::Adopt(source_->Copy(name)));
    if (item_)
        macos::Item::From(item_.Get())->SetSource(source_);
}

void Result::MakeKey(const SortOrder &order) {
    key_.clear();
    for (const SortKey &part : order)
        AppendSortKey(key_, SortKeyOf(Value(part.name)), (part.flags & kMDQueryReverseSortOrderFlag) != 0);
    key_.shrink_to_fit();
}

MDItemRef Result::Item() {
    if (!item_)
        item_ = CFRef<MDItemRef>::Adopt(macos::Item::Create(source_));
    return item_.Get();
}

} // namespace sim::macos::query
