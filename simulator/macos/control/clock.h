// The time that the stand-ins live by: what run loops wait for and timers fire at. It is the machine's clock unless a
// test puts another in its place; the virtual one stands still while work is done and jumps when a run loop would wait,
// so that an hour of waiting takes no time and always ends the same way.
#pragma once

#include <CoreFoundation/CFDate.h>

#include <poll.h>

#include <span>

namespace sim::macos {

class Clock {
public:
    virtual ~Clock() = default;

    /// Seconds since 2001-01-01 GMT.
    virtual CFAbsoluteTime Now() const = 0;

    /// Returns when a descriptor is ready, or when the time has come. Ready descriptors have their revents set; a time
    /// that has passed already only looks.
    virtual void Wait(CFAbsoluteTime until, std::span<pollfd> descriptors) = 0;
};

/// The machine's clock.
class SystemClock final : public Clock {
public:
    CFAbsoluteTime Now() const override;
    void Wait(CFAbsoluteTime until, std::span<pollfd> descriptors) override;
};

/// A clock that moves only when told to, or when somebody waits: then it goes at once to the end of the wait. A wait
/// for a descriptor that is ready already takes no time. A wait without an end, when no descriptor is ready, is
/// refused: nothing could end it.
class VirtualClock final : public Clock {
public:
    explicit VirtualClock(CFAbsoluteTime start = 0) : now_(start) {}

    CFAbsoluteTime Now() const override { return now_; }
    void Wait(CFAbsoluteTime until, std::span<pollfd> descriptors) override;
    void Advance(CFTimeInterval seconds) { now_ += seconds; }

private:
    CFAbsoluteTime now_;
};

Clock &CurrentClock();

/// Puts a clock in the place of the current one for as long as it lives. The clock is borrowed.
class ClockOverride {
public:
    explicit ClockOverride(Clock &clock);
    ~ClockOverride();
    ClockOverride(const ClockOverride &) = delete;
    ClockOverride &operator=(const ClockOverride &) = delete;

private:
    Clock *previous_;
};

} // namespace sim::macos
