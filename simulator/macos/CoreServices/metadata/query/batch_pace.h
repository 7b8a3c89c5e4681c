// When a query has to speak: a batch is full when it holds enough changes or has waited long enough, whichever comes
// first. There is one pair of limits for the first progress notification, one for the following ones and one for
// updates.
#pragma once

#include <CoreFoundation/CFDate.h>
#include <CoreServices/MDQuery.h>

namespace sim::macos::query {

class BatchPace {
public:
    enum class Phase { kFirst, kProgress, kUpdate };

    MDQueryBatchingParams Parameters() const { return parameters_; }
    void SetParameters(const MDQueryBatchingParams &parameters) { parameters_ = parameters; }

    /// The wait counts from now on: from the start of the query, or from the last notification.
    void Begin(Phase phase, CFAbsoluteTime now);

    /// Tells that a change is waiting. In the update phase the wait counts from the first one after a notification, for
    /// there may have been none for hours.
    void NoteWaiting(CFAbsoluteTime now);
    bool IsWaiting() const { return waiting_; }

    /// At least 1.
    std::size_t MostChanges() const;
    CFAbsoluteTime Deadline() const;

private:
    MDQueryBatchingParams parameters_{20, 250, 500, 500, 500, 250};
    Phase phase_ = Phase::kFirst;
    CFAbsoluteTime since_ = 0;
    bool waiting_ = false;
};

} // namespace sim::macos::query
