// Real and virtual time.
#include "simulator/macos/control/clock.h"

#include "simulator/macos/control/stop.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <cmath>

namespace sim::macos {

namespace {

constexpr double kUnixSecondsAtEpoch = 978307200;

Clock *&ClockInUse() {
    static SystemClock *system = new SystemClock;
    static Clock *clock = system;
    return clock;
}

} // namespace

CFAbsoluteTime SystemClock::Now() const {
    const auto sinceUnixEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(sinceUnixEpoch).count() - kUnixSecondsAtEpoch;
}

void SystemClock::Wait(CFAbsoluteTime until, std::span<pollfd> descriptors) {
    const double milliseconds = std::ceil(std::max(0.0, until - Now()) * 1000);
    poll(descriptors.data(), descriptors.size(), static_cast<int>(std::min<double>(milliseconds, INT_MAX)));
}

void VirtualClock::Wait(CFAbsoluteTime until, std::span<pollfd> descriptors) {
    if (poll(descriptors.data(), descriptors.size(), 0) > 0 || until <= now_)
        return;
    constexpr CFTimeInterval kForever = 1e9;
    if (until - now_ > kForever)
        Stop("a run loop waits for ever in virtual time");
    now_ = until;
}

Clock &CurrentClock() { return *ClockInUse(); }

ClockOverride::ClockOverride(Clock &clock) : previous_(ClockInUse()) { ClockInUse() = &clock; }

ClockOverride::~ClockOverride() { ClockInUse() = previous_; }

} // namespace sim::macos
