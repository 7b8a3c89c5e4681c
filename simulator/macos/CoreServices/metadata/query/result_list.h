// The results of a query in their order. It changes a batch at a time and stands still in between. What is new gets its
// place when somebody asks for the order: while a query gathers, that is seldom.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/identity_hash.h"
#include "simulator/macos/CoreServices/metadata/query/pending_changes.h"
#include "simulator/macos/CoreServices/metadata/query/result.h"
#include "simulator/macos/CoreServices/metadata/query/sort_order.h"

#include <CoreFoundation/CFArray.h>

#include <unordered_map>
#include <vector>

namespace sim::macos::query {

/// What a batch did: the items that a notification speaks of. Changed and removed results are only named when their
/// item had been made; nobody can know the others.
struct AppliedBatch {
    bool changedList = false;
    std::vector<Result *> added;
    std::vector<CFRef<CFTypeRef>> changed;
    std::vector<CFRef<CFTypeRef>> removed;
};

class ResultList {
public:
    /// The names of the attributes whose values are read of every result.
    explicit ResultList(std::vector<std::string> names) : names_(std::move(names)) {}

    const std::vector<std::string> &Names() const { return names_; }
    std::size_t Count() const { return byFile_.size(); }
    bool Contains(const FileIdentity &file) const { return byFile_.contains(file); }
    Result &At(std::size_t index) {
        PutInOrder();
        return *inOrder_[index];
    }
    /// kCFNotFound when the file is no result.
    CFIndex IndexOf(const FileIdentity &file);

    /// Applies changes in their order. Additions that would make the list longer than the limit are left out; 0 is no
    /// limit.
    AppliedBatch Apply(std::vector<PendingChange> batch, std::size_t limit);

    void SetOrder(SortOrder order);
    const SortOrder &Order() const { return order_; }

    /// Counts every change of the list.
    std::uint64_t Generation() const { return generation_; }

private:
    std::size_t PlaceOf(const Result &result) const;
    void TakeOut(std::vector<std::size_t> places);
    void PutInOrder();
    void Renumber();

    std::vector<std::string> names_;
    SortOrder order_;
    std::unordered_map<FileIdentity, std::unique_ptr<Result>, IdentityHash> byFile_;
    std::vector<Result *> inOrder_;
    std::vector<Result *> unplaced_; // those that have no place in the order yet
    bool numbered_ = true;
    std::uint64_t lastArrival_ = 0;
    std::uint64_t generation_ = 0;
};

} // namespace sim::macos::query
