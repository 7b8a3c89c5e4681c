// Run loops: one for each thread, made when first asked for. A loop runs jobs that were posted to it, sources that were
// signalled, timers that are due and descriptors that can be read, each in the thread of the loop and only while it
// runs. Time is that of control/clock.h. Everything belongs to the default mode; a run in any other mode finds nothing
// and is finished at once.
//
// A run may start inside another, from a callback. What is being called back is then not called again by the inner run.
#pragma once

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/control/clock.h"

#include <CoreFoundation/CFRunLoop.h>

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace sim::macos {

class RunLoop final : public Object {
public:
    using Callback = std::function<void()>;
    /// Names a timer, source or descriptor of one loop; never used twice, 0 is none.
    using Id = std::uint64_t;

    static RunLoop &Current();
    static RunLoop &Main();

    ~RunLoop() override;
    CFTypeID TypeID() const override { return RegisterType("CFRunLoop"); }

    /// Runs the job once, in the next pass of the loop. Counts as a source that was handled. From any thread.
    void Post(Callback job);

    /// Fires at a time of the current clock, then each interval after it as long as that is above 0. Firings that were
    /// missed are left out. A timer is not a source: it does not end a run.
    Id AddTimer(CFAbsoluteTime first, CFTimeInterval interval, Callback fire);
    /// Moves the next firing of a timer.
    void SetNextFiring(Id timer, CFAbsoluteTime next);

    /// A source that does nothing until it is signalled. It keeps a run from being finished for want of sources.
    Id AddSource(Callback perform);
    /// From any thread; several signals before the loop comes round are one.
    void Signal(Id source);

    /// A source that performs whenever the descriptor can be read. The descriptor is borrowed.
    Id AddDescriptor(int descriptor, Callback readable);

    /// Takes a timer, source or descriptor away; unknown ones are ignored. It is not called any more, not even by the
    /// pass that is going on.
    void Remove(Id id);

    /// What CFRunLoopRunInMode answers in the default mode. A time of 0 or less makes one pass without waiting.
    SInt32 Run(CFTimeInterval seconds, bool returnAfterSourceHandled);
    /// Ends the innermost run that is going on; nothing when there is none. From any thread.
    void Stop();

private:
    struct Item {
        enum class Kind { kTimer, kSource, kDescriptor };
        Id id;
        Kind kind;
        Callback callback;
        CFAbsoluteTime next = 0;
        CFTimeInterval interval = 0;
        int descriptor = -1;
        bool signalled = false;
        bool removed = false;
        bool busy = false;
    };
    using ItemPointer = std::shared_ptr<Item>;

    RunLoop();

    Id Add(Item item);
    ItemPointer Find(Id id);
    std::vector<ItemPointer> Items(Item::Kind kind);
    bool IsEmpty();
    void Wake();
    bool RunPostedJobs();
    bool PerformSignalled();
    void FireTimers();
    bool WaitAndReadDescriptors(CFAbsoluteTime until);
    CFAbsoluteTime NextFiring();
    void Call(Item &item);

    std::mutex mutex_;
    std::deque<Callback> jobs_;
    std::vector<ItemPointer> items_;
    std::vector<bool *> runs_; // the stop mark of each run that is going on, the innermost last
    Id lastId_ = 0;
    int wakeDescriptor_;
};

} // namespace sim::macos
