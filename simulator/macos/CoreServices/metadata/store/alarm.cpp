// A timer and the message queue of inotify behind one poll descriptor.
#include "simulator/macos/CoreServices/metadata/store/alarm.h"

#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>

namespace sim::macos::store {

namespace {

void Listen(int poll, int descriptor) {
    epoll_event wanted{};
    wanted.events = EPOLLIN;
    epoll_ctl(poll, EPOLL_CTL_ADD, descriptor, &wanted);
}

} // namespace

Alarm::Alarm(int messages)
    : poll_(epoll_create1(EPOLL_CLOEXEC)), timer_(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)) {
    Listen(poll_, timer_);
    if (messages >= 0)
        Listen(poll_, messages);
}

Alarm::~Alarm() {
    close(timer_);
    close(poll_);
}

void Alarm::Set(FileTime delay) {
    constexpr FileTime kSecond = 1000 * kMillisecond;
    delay = std::max<FileTime>(delay, 1); // zero would mean never
    itimerspec when{};
    when.it_value.tv_sec = static_cast<time_t>(delay / kSecond);
    when.it_value.tv_nsec = static_cast<long>(delay % kSecond);
    timerfd_settime(timer_, 0, &when, nullptr);
}

void Alarm::Clear() {
    const itimerspec never{};
    timerfd_settime(timer_, 0, &never, nullptr);
}

} // namespace sim::macos::store
