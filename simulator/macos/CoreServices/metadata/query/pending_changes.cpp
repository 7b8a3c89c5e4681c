#include "simulator/macos/CoreServices/metadata/query/pending_changes.h"

#include <utility>

namespace sim::macos::query {

void PendingChanges::Note(const FileIdentity &file, std::shared_ptr<const AttributeSource> source, bool isResult) {
    using Kind = PendingChange::Kind;
    if (!source && !isResult) {
        if (Count() > 0)
            Erase(file);
        return;
    }
    const Kind kind = !source ? Kind::kRemove : isResult ? Kind::kChange : Kind::kAdd;
    const auto [place, isNew] = ages_.try_emplace(file, lastAge_ + 1);
    if (isNew)
        ++lastAge_;
    PendingChange &change = byAge_[place->second];
    if (!isNew) {
        added_ -= change.kind == Kind::kAdd;
        removed_ -= change.kind == Kind::kRemove;
    }
    change = {kind, file, std::move(source)};
    added_ += kind == Kind::kAdd;
    removed_ += kind == Kind::kRemove;
}

std::vector<PendingChange> PendingChanges::Take(std::size_t most) {
    std::vector<PendingChange> taken;
    while (taken.size() < most && !byAge_.empty()) {
        PendingChange change = std::move(byAge_.begin()->second);
        Erase(change.file);
        taken.push_back(std::move(change));
    }
    return taken;
}

void PendingChanges::Erase(const FileIdentity &file) {
    const auto found = ages_.find(file);
    if (found == ages_.end())
        return;
    const auto change = byAge_.find(found->second);
    added_ -= change->second.kind == PendingChange::Kind::kAdd;
    removed_ -= change->second.kind == PendingChange::Kind::kRemove;
    byAge_.erase(change);
    ages_.erase(found);
}

} // namespace sim::macos::query
