// A metadata query: what an MDQueryRef points at. It executes once. From then on it pulls files from the store, in
// small portions and only while the run loop of the executing thread runs, holds back what it finds until a batch is
// full, and then, all at once, brings its results up to date and posts a notification. A notification is always the
// last thing that a portion of work does, so a handler may stop the query, read it, execute another or let go of the
// last reference.
//
// Where the platform's documents are silent this stand-in chooses: a synchronous run posts the same notifications as
// any other; a subset query looks for what its source looks for and its own expression too, in the source's scope
// unless it gets one of its own; while updates are disabled gathering goes on but neither finishes nor reports.
#pragma once

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/run_loop.h"
#include "simulator/macos/CoreServices/metadata/expression/expression.h"
#include "simulator/macos/CoreServices/metadata/query/batch_pace.h"
#include "simulator/macos/CoreServices/metadata/query/pending_changes.h"
#include "simulator/macos/CoreServices/metadata/query/result_list.h"
#include "simulator/macos/CoreServices/metadata/query/value_list.h"

#include <CoreServices/MDQuery.h>

#include <atomic>
#include <map>
#include <optional>

namespace sim::macos::query {

class Query final : public Object {
public:
    /// +1. Null for an empty or malformed expression. A source makes it a subset query. Arrays may be null.
    static MDQueryRef Create(const Query *source, CFStringRef text, CFArrayRef valueNames, CFArrayRef sortNames);

    static CFTypeID Type();
    static Query &From(MDQueryRef query) { return Expect<Query>(query); }
    MDQueryRef Ref() const { return As<MDQueryRef>(); }

    ~Query() override;
    CFTypeID TypeID() const override { return Type(); }
    std::string Description() const override;

    CFStringRef Text() const { return text_.Get(); }
    CFArrayRef ValueNames() const { return valueNames_.Get(); }
    CFArrayRef SortNames() const { return sortNames_.Get(); }
    /// Null when none was set.
    CFArrayRef Scope() const { return scope_.Get(); }

    MDQueryBatchingParams BatchingParameters() const { return pace_.Parameters(); }
    void SetBatchingParameters(const MDQueryBatchingParams &parameters);
    /// Both are ignored once the query was executed. A size of 0 or less is no limit.
    void SetScope(CFArrayRef entries);
    void SetMaxCount(CFIndex size);

    bool Execute(CFOptionFlags flags);
    void Stop();
    void DisableUpdates() { ++disabled_; }
    void EnableUpdates();
    bool IsGatheringComplete() const { return state_ == State::kFinished; }

    ResultList &Results() { return results_; }
    /// Nothing for an attribute that is in neither of the two lists.
    std::optional<std::size_t> ReadName(CFStringRef name) const;
    /// Null for an attribute that is not in the value list.
    const ValueList *Values(CFStringRef name);

    std::uint32_t SortFlags(CFStringRef name) const;
    /// False for an attribute that is not in the sort list.
    bool SetSortFlags(CFStringRef name, std::uint32_t flags);
    bool SetSortOrder(CFArrayRef names);

private:
    enum class State { kIdle, kGathering, kFinished };
    using Expressions = std::vector<std::shared_ptr<const expression::Expression>>;

    Query(Expressions expressions, CFStringRef text, CFArrayRef valueNames, CFArrayRef sortNames);

    bool IsFrozen() const { return disabled_ > 0; }
    bool IsLookedFor(const AttributeSource &file) const;
    bool IsBatchFull() const;
    bool IsEverythingIn() const;

    void Work();
    void PullPortion();
    void Note(const store::FileEvent &event);
    bool Report();
    void Publish(std::size_t most);
    void Finish();
    void SetTimer();
    void WorkSoon();
    void LeaveRunLoop();
    void Reorder(SortOrder order);

    Expressions expressions_;
    CFRef<CFStringRef> text_;
    CFRef<CFArrayRef> valueNames_;
    CFRef<CFArrayRef> sortNames_;
    std::vector<std::size_t> valueList_; // which of the read attributes are in the value list
    std::vector<std::size_t> sortList_;
    std::map<std::size_t, std::uint32_t> sortFlags_;
    CFRef<CFArrayRef> scope_;
    std::size_t maxCount_ = 0;

    State state_ = State::kIdle;
    bool stopped_ = false;
    bool live_ = false;
    std::atomic<int> disabled_ = 0;
    CFAbsoluteTime executedAt_ = 0;
    RunLoop *loop_ = nullptr;
    std::atomic<RunLoop::Id> source_ = 0;
    RunLoop::Id timer_ = 0;
    std::unique_ptr<store::Session> session_;

    BatchPace pace_;
    PendingChanges pending_;
    ResultList results_;
    std::optional<SortOrder> laterOrder_; // asked for while the list stands still
    struct CachedValues {
        std::uint64_t generation;
        ValueList values;
    };
    std::map<std::size_t, CachedValues> values_;
};

} // namespace sim::macos::query
