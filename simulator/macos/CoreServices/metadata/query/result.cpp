#include "simulator/macos/CoreServices/metadata/query/result.h"

#include "simulator/macos/CoreServices/metadata/items/item.h"

#include <utility>

namespace sim::macos::query {

void Result::SetSource(std::shared_ptr<const AttributeSource> source, const std::vector<std::string> &names) {
    source_ = std::move(source);
    values_.clear();
    for (const std::string &name : names)
        values_.push_back(CFRef<CFTypeRef>::Adopt(source_->Copy(name)));
    if (item_)
        macos::Item::From(item_.Get())->SetSource(source_);
}

MDItemRef Result::Item() {
    if (!item_)
        item_ = CFRef<MDItemRef>::Adopt(macos::Item::Create(source_));
    return item_.Get();
}

} // namespace sim::macos::query
