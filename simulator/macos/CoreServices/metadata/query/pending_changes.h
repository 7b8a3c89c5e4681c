// What has come in since the last batch and does not show in the results yet. All that happened to one file is one
// change, seen from the results as they stand: a file that came and went again is none.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/identity_hash.h"
#include "simulator/macos/CoreServices/metadata/store/session.h"

#include <cstddef>
#include <map>
#include <unordered_map>
#include <vector>

namespace sim::macos::query {

struct PendingChange {
    enum class Kind { kAdd, kChange, kRemove };
    Kind kind = Kind::kAdd;
    FileIdentity file;
    std::shared_ptr<const AttributeSource> source; // null for a removal
};

class PendingChanges {
public:
    /// Notes how a file stands now: the source when it should be a result, null when it should not; and whether it is
    /// one as long as the pending changes are not applied.
    void Note(const FileIdentity &file, std::shared_ptr<const AttributeSource> source, bool isResult);

    std::size_t Count() const { return byAge_.size(); }
    std::size_t AddedCount() const { return added_; }
    std::size_t RemovedCount() const { return removed_; }

    /// Takes out the oldest changes.
    std::vector<PendingChange> Take(std::size_t most);

private:
    void Erase(const FileIdentity &file);

    std::map<std::uint64_t, PendingChange> byAge_;
    std::unordered_map<FileIdentity, std::uint64_t, IdentityHash> ages_;
    std::uint64_t lastAge_ = 0;
    std::size_t added_ = 0;
    std::size_t removed_ = 0;
};

} // namespace sim::macos::query
