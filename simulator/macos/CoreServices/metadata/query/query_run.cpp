// A query at work: gathering, then live, then over.
#include "simulator/macos/CoreServices/metadata/query/query.h"

#include "simulator/macos/CoreFoundation/array.h"
#include "simulator/macos/CoreFoundation/dictionary.h"
#include "simulator/macos/CoreFoundation/notification_center.h"
#include "simulator/macos/CoreFoundation/registry.h"
#include "simulator/macos/CoreServices/metadata/query/scripted_progress.h"
#include "simulator/macos/CoreServices/metadata/store/search_scope.h"
#include "simulator/macos/control/clock.h"
#include "simulator/macos/control/faults.h"

#include <limits>

namespace sim::macos {

namespace {
bool progressCarriesAddedItems = false;
} // namespace

ProgressWithAddedItems::ProgressWithAddedItems() : previous_(progressCarriesAddedItems) {
    progressCarriesAddedItems = true;
}

ProgressWithAddedItems::~ProgressWithAddedItems() { progressCarriesAddedItems = previous_; }

namespace query {

namespace {

/// How much is done before other sources of the run loop get their turn.
constexpr int kPortionSteps = 500;
constexpr CFTimeInterval kPortionTime = 0.005;
/// How many steps are made between looks at the clock.
constexpr int kStepsBetweenLooks = 16;

CFAbsoluteTime Now() { return CurrentClock().Now(); }

using UserInfo = std::vector<std::pair<CFTypeRef, CFTypeRef>>;

CFRef<CFArrayRef> ArrayOf(const std::vector<CFRef<CFTypeRef>> &items) {
    std::vector<CFTypeRef> borrowed;
    for (const auto &item : items)
        borrowed.push_back(item.Get());
    return MakeArray(borrowed);
}

/// Keys of empty lists are left out; without any key there is no dictionary.
CFRef<CFDictionaryRef> UserInfoOf(const AppliedBatch &batch, bool withAdded) {
    std::vector<CFRef<CFTypeRef>> added;
    for (Result *result : batch.added) {
        if (withAdded)
            added.push_back(CFRef<CFTypeRef>::Retain(result->Item()));
    }
    std::vector<CFRef<CFArrayRef>> arrays;
    UserInfo pairs;
    const auto include = [&](CFStringRef key, const std::vector<CFRef<CFTypeRef>> &items) {
        if (items.empty())
            return;
        arrays.push_back(ArrayOf(items));
        pairs.push_back({key, arrays.back().Get()});
    };
    include(kMDQueryUpdateAddedItems, added);
    include(kMDQueryUpdateChangedItems, batch.changed);
    include(kMDQueryUpdateRemovedItems, batch.removed);
    return pairs.empty() ? CFRef<CFDictionaryRef>() : MakeDictionary(pairs);
}

} // namespace

bool Query::Execute(CFOptionFlags flags) {
    if (state_ != State::kIdle || stopped_)
        return false;
    const auto self = CFRef<MDQueryRef>::Retain(Ref());
    const bool synchronous = (flags & kMDQuerySynchronous) != 0;
    live_ = !synchronous && (flags & kMDQueryWantsUpdates) != 0;
    state_ = State::kGathering;
    executedAt_ = Now();
    pace_.Begin(BatchPace::Phase::kFirst, executedAt_);
    loop_ = &RunLoop::Current();
    source_ = loop_->AddSource([this] { Work(); });
    {
        const OwnCalls own;
        session_ = store::FileStore::Current().Open(store::ResolveScope(scope_.Get()), live_, [this] { WorkSoon(); });
    }
    WorkSoon();
    const auto isOver = [this] { return stopped_ || state_ == State::kFinished || (IsFrozen() && IsEverythingIn()); };
    while (synchronous && !isOver())
        loop_->Run(std::numeric_limits<double>::infinity(), true);
    return true;
}

void Query::Stop() {
    if (stopped_)
        return;
    const auto self = CFRef<MDQueryRef>::Retain(Ref());
    stopped_ = true;
    session_.reset();
    if (state_ == State::kIdle)
        return;
    if (IsFrozen() && pending_.Count() > 0)
        return; // what came in shows when the list may change again
    LeaveRunLoop();
    Publish(pending_.Count());
}

void Query::EnableUpdates() {
    int count = disabled_;
    while (count > 0 && !disabled_.compare_exchange_weak(count, count - 1)) {
    }
    if (count == 1)
        WorkSoon();
}

void Query::SetBatchingParameters(const MDQueryBatchingParams &parameters) {
    pace_.SetParameters(parameters);
    WorkSoon();
}

bool Query::IsLookedFor(const AttributeSource &file) const {
    const Unseen values;
    for (const auto &expression : expressions_) {
        if (!expression->Matches(file, executedAt_))
            return false;
    }
    return true;
}

bool Query::IsBatchFull() const {
    if (IsFrozen() || pending_.Count() == 0)
        return false;
    return pending_.Count() >= pace_.MostChanges() || Now() >= pace_.Deadline();
}

/// A list that is full cannot grow any more; without updates it cannot change either.
bool Query::IsEverythingIn() const {
    const bool full = maxCount_ != 0 && results_.Count() + pending_.AddedCount() >= maxCount_;
    return !session_ || session_->Gathered() || (full && !live_);
}

void Query::Work() {
    const auto self = CFRef<MDQueryRef>::Retain(Ref());
    if (laterOrder_ && !IsFrozen())
        Reorder(std::move(*laterOrder_));
    if (!stopped_)
        PullPortion();
    if (stopped_ && !IsFrozen()) {
        LeaveRunLoop();
        Publish(pending_.Count());
        return;
    }
    SetTimer();
    Report();
}

void Query::PullPortion() {
    const OwnCalls own;
    const CFAbsoluteTime end = Now() + kPortionTime;
    store::FileEvent event;
    for (int step = 0; session_ && !IsBatchFull(); ++step) {
        const bool gathered = state_ == State::kGathering && IsEverythingIn();
        if (gathered)
            return;
        if (step == kPortionSteps || (step % kStepsBetweenLooks == 0 && Now() > end)) {
            WorkSoon();
            return;
        }
        const auto done = session_->Next(event);
        if (done == store::Session::Step::kIdle)
            return;
        if (done == store::Session::Step::kEvent)
            Note(event);
    }
}

void Query::Note(const store::FileEvent &event) {
    const bool isThere = event.kind != store::FileEvent::Kind::kLost;
    const bool isLookedFor = isThere && IsLookedFor(*event.source);
    // What is found was not there before, unless the end of that is still pending.
    const bool mayBeResult = event.kind != store::FileEvent::Kind::kFound || pending_.RemovedCount() > 0;
    pending_.Note(event.file, isLookedFor ? event.source : nullptr, mayBeResult && results_.Contains(event.file));
    if (pending_.Count() > 0 && !pace_.IsWaiting())
        pace_.NoteWaiting(Now());
}

/// Posts what is due, one notification at most. True when it did.
bool Query::Report() {
    if (IsFrozen())
        return false;
    const bool gathered = state_ == State::kGathering && IsEverythingIn();
    if (IsBatchFull() || (gathered && pending_.Count() > 0)) {
        WorkSoon();
        Publish(pace_.MostChanges());
        return true;
    }
    if (!gathered)
        return false;
    Finish();
    return true;
}

void Query::Publish(std::size_t most) {
    const bool isUpdate = state_ == State::kFinished;
    CFRef<CFDictionaryRef> userInfo;
    {
        const OwnCalls own;
        const AppliedBatch batch = results_.Apply(pending_.Take(most), maxCount_);
        pace_.Begin(isUpdate ? BatchPace::Phase::kUpdate : BatchPace::Phase::kProgress, Now());
        if (pending_.Count() > 0)
            pace_.NoteWaiting(Now());
        if (!batch.changedList)
            return;
        userInfo = UserInfoOf(batch, isUpdate || progressCarriesAddedItems);
    }
    const CFStringRef name = isUpdate ? kMDQueryDidUpdateNotification : kMDQueryProgressNotification;
    NotificationCenter::Local().Post(name, Ref(), userInfo.Get());
}

void Query::Finish() {
    state_ = State::kFinished;
    pace_.Begin(BatchPace::Phase::kUpdate, Now());
    if (live_) {
        WorkSoon();
    } else {
        session_.reset();
        LeaveRunLoop();
    }
    NotificationCenter::Local().Post(kMDQueryDidFinishNotification, Ref(), nullptr);
}

void Query::SetTimer() {
    if (timer_ != 0)
        loop_->Remove(std::exchange(timer_, 0));
    if (pending_.Count() > 0 && !IsFrozen())
        timer_ = loop_->AddTimer(pace_.Deadline(), 0, [this] { WorkSoon(); });
}

void Query::WorkSoon() {
    if (loop_ && source_ != 0)
        loop_->Signal(source_);
}

void Query::LeaveRunLoop() {
    if (!loop_)
        return;
    loop_->Remove(source_.exchange(0));
    loop_->Remove(std::exchange(timer_, 0));
}

} // namespace query

} // namespace sim::macos
