#include "simulator/host/ground/stop.h"

#include <cstdio>
#include <cstdlib>

namespace sim::host {

namespace {
StopHandler stopHandler = nullptr;
}

void Stop(const std::string &reason) {
    if (stopHandler)
        stopHandler(reason);
    std::fprintf(stderr, "host: %s\n", reason.c_str());
    std::abort();
}

StopHandler SetStopHandler(StopHandler handler) {
    StopHandler previous = stopHandler;
    stopHandler = handler;
    return previous;
}

} // namespace sim::host
