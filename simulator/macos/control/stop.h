// How the stand-in frameworks refuse: a call that the real system would answer with a crash or with nonsense, or that
// is not modelled, ends with a sentence that says what was wrong. The default is to print it and abort; a test that
// wants to see the refusal installs a handler that throws.
#pragma once

#include <string>

namespace sim::macos {

/// Ends the call with a message; never returns to the caller.
[[noreturn]] void Stop(const std::string &message);

/// Called with the message before anything else. It may throw; when it returns, the process aborts.
using StopHandler = void (*)(const std::string &message);

/// Returns the handler that was installed before; null is the default.
StopHandler SetStopHandler(StopHandler handler);

/// What a stop raises while a StopsThrow lives.
struct Stopped {
    std::string message;
};

/// While it lives, Stop throws Stopped instead of aborting. Nothing that was half done is undone.
class StopsThrow {
public:
    StopsThrow();
    ~StopsThrow();
    StopsThrow(const StopsThrow &) = delete;
    StopsThrow &operator=(const StopsThrow &) = delete;

private:
    StopHandler previous_;
};

} // namespace sim::macos
