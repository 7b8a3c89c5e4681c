// Run loops.
#include "simulator/macos/CoreFoundation/run_loop.h"

#include "simulator/macos/CoreFoundation/text.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace sim::macos {

RunLoop &RunLoop::Main() {
    static RunLoop *loop = new RunLoop;
    return *loop;
}

RunLoop &RunLoop::Current() {
    if (gettid() == getpid())
        return Main();
    static thread_local std::unique_ptr<RunLoop> loop(new RunLoop);
    return *loop;
}

RunLoop::RunLoop() : Object(Immortal{}), wakeDescriptor_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (wakeDescriptor_ < 0)
        macos::Stop("the system gives no event descriptor for a run loop");
}

RunLoop::~RunLoop() { close(wakeDescriptor_); }

void RunLoop::Wake() { eventfd_write(wakeDescriptor_, 1); }

void RunLoop::Post(Callback job) {
    std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
    Wake();
}

RunLoop::Id RunLoop::Add(Item item) {
    std::lock_guard lock(mutex_);
    item.id = ++lastId_;
    items_.push_back(std::make_shared<Item>(std::move(item)));
    Wake();
    return lastId_;
}

RunLoop::Id RunLoop::AddTimer(CFAbsoluteTime first, CFTimeInterval interval, Callback fire) {
    Item item{};
    item.kind = Item::Kind::kTimer;
    item.callback = std::move(fire);
    item.next = first;
    item.interval = interval;
    return Add(std::move(item));
}

RunLoop::Id RunLoop::AddSource(Callback perform) {
    Item item{};
    item.kind = Item::Kind::kSource;
    item.callback = std::move(perform);
    return Add(std::move(item));
}

RunLoop::Id RunLoop::AddDescriptor(int descriptor, Callback readable) {
    Item item{};
    item.kind = Item::Kind::kDescriptor;
    item.callback = std::move(readable);
    item.descriptor = descriptor;
    return Add(std::move(item));
}

RunLoop::ItemPointer RunLoop::Find(Id id) {
    auto found = std::find_if(items_.begin(), items_.end(), [&](const ItemPointer &item) { return item->id == id; });
    return found == items_.end() ? nullptr : *found;
}

void RunLoop::SetNextFiring(Id timer, CFAbsoluteTime next) {
    std::lock_guard lock(mutex_);
    if (ItemPointer item = Find(timer))
        item->next = next;
    Wake();
}

void RunLoop::Signal(Id source) {
    std::lock_guard lock(mutex_);
    if (ItemPointer item = Find(source))
        item->signalled = true;
    Wake();
}

void RunLoop::Remove(Id id) {
    std::lock_guard lock(mutex_);
    if (ItemPointer item = Find(id)) {
        item->removed = true;
        std::erase(items_, item);
    }
    Wake();
}

std::vector<RunLoop::ItemPointer> RunLoop::Items(Item::Kind kind) {
    std::lock_guard lock(mutex_);
    std::vector<ItemPointer> items;
    std::copy_if(items_.begin(), items_.end(), std::back_inserter(items),
                 [&](const ItemPointer &item) { return item->kind == kind && !item->busy; });
    return items;
}

bool RunLoop::IsEmpty() {
    std::lock_guard lock(mutex_);
    return items_.empty() && jobs_.empty();
}

void RunLoop::Call(Item &item) {
    struct Busy {
        bool &mark;
        explicit Busy(bool &busy) : mark(busy) { mark = true; }
        ~Busy() { mark = false; }
    } busy(item.busy);
    item.callback();
}

bool RunLoop::RunPostedJobs() {
    std::unique_lock lock(mutex_);
    bool ran = false;
    for (std::size_t count = jobs_.size(); count > 0 && !jobs_.empty(); --count) {
        Callback job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        job();
        ran = true;
        lock.lock();
    }
    return ran;
}

bool RunLoop::PerformSignalled() {
    bool performed = false;
    for (const ItemPointer &source : Items(Item::Kind::kSource)) {
        {
            std::lock_guard lock(mutex_);
            if (source->removed || !std::exchange(source->signalled, false))
                continue;
        }
        Call(*source);
        performed = true;
    }
    return performed;
}

CFAbsoluteTime RunLoop::NextFiring() {
    CFAbsoluteTime next = std::numeric_limits<CFAbsoluteTime>::infinity();
    for (const ItemPointer &timer : Items(Item::Kind::kTimer))
        next = std::min(next, timer->next);
    return next;
}

void RunLoop::FireTimers() {
    const CFAbsoluteTime now = CurrentClock().Now();
    std::vector<ItemPointer> timers = Items(Item::Kind::kTimer);
    std::erase_if(timers, [&](const ItemPointer &timer) { return timer->next > now; });
    std::stable_sort(timers.begin(), timers.end(),
                     [](const ItemPointer &one, const ItemPointer &other) { return one->next < other->next; });
    for (const ItemPointer &timer : timers) {
        if (timer->removed || timer->busy || timer->next > now)
            continue;
        if (timer->interval <= 0) {
            Remove(timer->id);
            Call(*timer);
            continue;
        }
        const CFAbsoluteTime due = timer->next;
        Call(*timer);
        if (timer->next == due) // not moved by its own callback
            timer->next += timer->interval * (std::floor((CurrentClock().Now() - due) / timer->interval) + 1);
    }
}

bool RunLoop::WaitAndReadDescriptors(CFAbsoluteTime until) {
    const std::vector<ItemPointer> watched = Items(Item::Kind::kDescriptor);
    std::vector<pollfd> descriptors{{wakeDescriptor_, POLLIN, 0}};
    for (const ItemPointer &item : watched)
        descriptors.push_back({item->descriptor, POLLIN, 0});
    CurrentClock().Wait(until, descriptors);
    eventfd_t wakes = 0;
    eventfd_read(wakeDescriptor_, &wakes);
    FireTimers();
    bool read = false;
    for (std::size_t index = 0; index < watched.size(); ++index) {
        if (descriptors[index + 1].revents == 0 || watched[index]->removed || watched[index]->busy)
            continue;
        Call(*watched[index]);
        read = true;
    }
    return read;
}

SInt32 RunLoop::Run(CFTimeInterval seconds, bool returnAfterSourceHandled) {
    if (IsEmpty())
        return kCFRunLoopRunFinished;
    struct OneRun {
        RunLoop &loop;
        bool stopped = false;
        explicit OneRun(RunLoop &running) : loop(running) {
            std::lock_guard lock(loop.mutex_);
            loop.runs_.push_back(&stopped);
        }
        ~OneRun() {
            std::lock_guard lock(loop.mutex_);
            loop.runs_.pop_back();
        }
        bool IsStopped() {
            std::lock_guard lock(loop.mutex_);
            return stopped;
        }
    } run(*this);
    const CFAbsoluteTime end = CurrentClock().Now() + std::max(seconds, 0.0);
    for (;;) {
        bool handled = RunPostedJobs();
        handled |= PerformSignalled();
        const CFAbsoluteTime now = CurrentClock().Now();
        handled |= WaitAndReadDescriptors(handled || run.IsStopped() ? now : std::min(end, NextFiring()));
        if (handled && returnAfterSourceHandled)
            return kCFRunLoopRunHandledSource;
        if (CurrentClock().Now() >= end)
            return kCFRunLoopRunTimedOut;
        if (run.IsStopped())
            return kCFRunLoopRunStopped;
        if (IsEmpty())
            return kCFRunLoopRunFinished;
    }
}

void RunLoop::Stop() {
    std::lock_guard lock(mutex_);
    if (!runs_.empty())
        *runs_.back() = true;
    Wake();
}

} // namespace sim::macos

using namespace sim::macos;

const CFStringRef kCFRunLoopDefaultMode = CFSTR("kCFRunLoopDefaultMode");

CFRunLoopRef CFRunLoopGetCurrent() { return RunLoop::Current().As<CFRunLoopRef>(); }

CFRunLoopRef CFRunLoopGetMain() { return RunLoop::Main().As<CFRunLoopRef>(); }

SInt32 CFRunLoopRunInMode(CFStringRef mode, CFTimeInterval seconds, Boolean returnAfterSourceHandled) {
    if (Utf8Of(mode) != Utf8Of(kCFRunLoopDefaultMode))
        return kCFRunLoopRunFinished;
    return RunLoop::Current().Run(seconds, returnAfterSourceHandled);
}

void CFRunLoopStop(CFRunLoopRef loop) { Expect<RunLoop>(loop).Stop(); }
