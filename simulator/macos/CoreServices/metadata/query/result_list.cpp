#include "simulator/macos/CoreServices/metadata/query/result_list.h"

#include <algorithm>
#include <unordered_set>

namespace sim::macos::query {

CFIndex ResultList::IndexOf(const FileIdentity &file) {
    const auto found = byFile_.find(file);
    if (found == byFile_.end())
        return kCFNotFound;
    if (!numbered_)
        Renumber();
    return static_cast<CFIndex>(found->second->index);
}

AppliedBatch ResultList::Apply(std::vector<PendingChange> batch, std::size_t limit) {
    AppliedBatch applied;
    std::unordered_set<const Result *> outOfPlace;
    std::vector<Result *> touched;
    std::vector<std::unique_ptr<Result>> gone; // until they are out of the order too

    for (PendingChange &change : batch) {
        const auto found = byFile_.find(change.file);
        if (change.kind == PendingChange::Kind::kAdd)
            continue;
        Result &result = *found->second;
        const bool removed = change.kind == PendingChange::Kind::kRemove;
        if (result.HasItem()) {
            auto &list = removed ? applied.removed : applied.changed;
            list.push_back(CFRef<CFTypeRef>::Retain(result.Item()));
        }
        outOfPlace.insert(&result);
        if (removed) {
            gone.push_back(std::move(found->second));
            byFile_.erase(found);
        } else {
            result.SetSource(std::move(change.source), names_);
            touched.push_back(&result);
        }
    }
    // Removals come first, so that they make room below the limit.
    for (PendingChange &change : batch) {
        if (change.kind != PendingChange::Kind::kAdd || (limit != 0 && byFile_.size() >= limit))
            continue;
        auto result = std::make_unique<Result>(change.file, ++lastArrival_);
        result->SetSource(std::move(change.source), names_);
        touched.push_back(result.get());
        applied.added.push_back(result.get());
        byFile_.emplace(change.file, std::move(result));
    }
    if (outOfPlace.empty() && touched.empty())
        return applied;
    if (!outOfPlace.empty())
        std::erase_if(inOrder_, [&](const Result *result) { return outOfPlace.contains(result); });
    Merge(std::move(touched));
    applied.changedList = true;
    return applied;
}

void ResultList::SetOrder(SortOrder order) {
    order_ = std::move(order);
    for (Result *result : inOrder_)
        result->ForgetKeys();
    Merge(std::exchange(inOrder_, {}));
}

/// Puts results to where they belong among those that are in order already.
void ResultList::Merge(std::vector<Result *> touched) {
    const auto before = [this](const Result *one, const Result *other) { return one->StandsBefore(*other, order_); };
    std::sort(touched.begin(), touched.end(), before);
    // Comparing is what costs: a search for each place, not a look at every result that stays where it is.
    std::vector<Result *> merged;
    merged.reserve(inOrder_.size() + touched.size());
    auto from = inOrder_.begin();
    for (Result *result : touched) {
        // In strides that double, for the next place is not far when many results come at once.
        std::ptrdiff_t stride = 1;
        while (stride < inOrder_.end() - from && !before(result, from[stride]))
            stride *= 2;
        const auto end = stride < inOrder_.end() - from ? from + stride : inOrder_.end();
        const auto place = std::upper_bound(from + stride / 2, end, result, before);
        merged.insert(merged.end(), from, place);
        merged.push_back(result);
        from = place;
    }
    merged.insert(merged.end(), from, inOrder_.end());
    inOrder_ = std::move(merged);
    numbered_ = false;
    ++generation_;
}

void ResultList::Renumber() {
    for (std::size_t index = 0; index < inOrder_.size(); ++index)
        inOrder_[index]->index = index;
    numbered_ = true;
}

} // namespace sim::macos::query
