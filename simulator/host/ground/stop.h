// How the stand-in refuses: a sentence on standard error and the end of the process. What it refuses is a plugin's
// breach of the interface (a dead handle, a wrong kind of array) or something that it does not model; both must stop a
// run at once, not show as a strange value later.
#pragma once

#include <string>

namespace sim::host {

/// Says why and ends the process, unless a handler is set that throws.
[[noreturn]] void Stop(const std::string &reason);

/// For the stand-in's own tests. Returns the handler that was set before; null restores the usual end.
using StopHandler = void (*)(const std::string &reason);
StopHandler SetStopHandler(StopHandler handler);

} // namespace sim::host
