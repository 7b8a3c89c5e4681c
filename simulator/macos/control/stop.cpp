// Ending a call that must not go on.
#include "simulator/macos/control/stop.h"

#include <cstdio>
#include <cstdlib>

namespace sim::macos {

namespace {

StopHandler installed = nullptr;

} // namespace

void Stop(const std::string &message) {
    if (installed)
        installed(message);
    std::fprintf(stderr, "stand-in macOS: %s\n", message.c_str());
    std::fflush(stderr);
    std::abort();
}

StopHandler SetStopHandler(StopHandler handler) {
    StopHandler before = installed;
    installed = handler;
    return before;
}

StopsThrow::StopsThrow()
    : previous_(SetStopHandler([](const std::string &message) -> void { throw Stopped{message}; })) {}

StopsThrow::~StopsThrow() { SetStopHandler(previous_); }

} // namespace sim::macos
