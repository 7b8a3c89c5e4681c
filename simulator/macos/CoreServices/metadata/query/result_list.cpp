#include "simulator/macos/CoreServices/metadata/query/result_list.h"

#include <algorithm>
#include <utility>

namespace sim::macos::query {

CFIndex ResultList::IndexOf(const FileIdentity &file) {
    const auto found = byFile_.find(file);
    if (found == byFile_.end())
        return kCFNotFound;
    PutInOrder();
    if (!numbered_)
        Renumber();
    return static_cast<CFIndex>(found->second->index);
}

AppliedBatch ResultList::Apply(std::vector<PendingChange> batch, std::size_t limit) {
    AppliedBatch applied;

    // Before anything changes, for what stands where is told by comparing.
    std::vector<std::size_t> outOfPlace;
    for (const PendingChange &change : batch) {
        if (change.kind == PendingChange::Kind::kAdd)
            continue;
        PutInOrder();
        outOfPlace.push_back(PlaceOf(*byFile_.find(change.file)->second));
    }
    applied.changedList = !outOfPlace.empty();
    TakeOut(std::move(outOfPlace));

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
        if (removed) {
            byFile_.erase(found);
        } else {
            result.SetSource(std::move(change.source), names_);
            unplaced_.push_back(&result);
        }
    }
    // Removals come first, so that they make room below the limit.
    for (PendingChange &change : batch) {
        if (change.kind != PendingChange::Kind::kAdd || (limit != 0 && byFile_.size() >= limit))
            continue;
        auto result = std::make_unique<Result>(change.file, ++lastArrival_);
        result->SetSource(std::move(change.source), names_);
        unplaced_.push_back(result.get());
        applied.added.push_back(result.get());
        byFile_.emplace(change.file, std::move(result));
    }
    applied.changedList |= !applied.added.empty();
    if (applied.changedList) {
        numbered_ = false;
        ++generation_;
    }
    return applied;
}

void ResultList::SetOrder(SortOrder order) {
    order_ = std::move(order);
    unplaced_.insert(unplaced_.end(), inOrder_.begin(), inOrder_.end());
    inOrder_.clear();
    for (Result *result : unplaced_)
        result->ForgetKeys();
    numbered_ = false;
    ++generation_;
}

std::size_t ResultList::PlaceOf(const Result &result) const {
    const auto before = [this](const Result *one, const Result *other) { return one->StandsBefore(*other, order_); };
    const auto place = std::lower_bound(inOrder_.begin(), inOrder_.end(), &result, before);
    return static_cast<std::size_t>(place - inOrder_.begin());
}

/// What stays moves up in runs: looking at each of a million results would cost more than the changes do.
void ResultList::TakeOut(std::vector<std::size_t> places) {
    if (places.empty())
        return;
    std::sort(places.begin(), places.end());
    const auto at = [this](std::size_t place) { return inOrder_.begin() + static_cast<std::ptrdiff_t>(place); };
    auto end = at(places.front());
    for (std::size_t index = 0; index < places.size(); ++index) {
        const auto next = index + 1 < places.size() ? at(places[index + 1]) : inOrder_.end();
        end = std::move(at(places[index]) + 1, next, end);
    }
    inOrder_.erase(end, inOrder_.end());
}

void ResultList::PutInOrder() {
    if (unplaced_.empty())
        return;
    const auto before = [this](const Result *one, const Result *other) { return one->StandsBefore(*other, order_); };
    std::sort(unplaced_.begin(), unplaced_.end(), before);
    // Comparing is what costs: a search for each place, not a look at every result that stays where it is.
    std::vector<Result *> merged;
    merged.reserve(inOrder_.size() + unplaced_.size());
    auto from = inOrder_.begin();
    for (Result *result : unplaced_) {
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
    unplaced_ = {};
}

void ResultList::Renumber() {
    for (std::size_t index = 0; index < inOrder_.size(); ++index)
        inOrder_[index]->index = index;
    numbered_ = true;
}

} // namespace sim::macos::query
