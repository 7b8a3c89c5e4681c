// Hears every call that a loaded plugin makes of the system's frameworks, whichever kind of file it came from: the
// words through which it calls them are led past a listener. The plugin is not changed in any other way, and what the
// frameworks call among themselves is not heard.
#pragma once

#include "simulator/validate/import_lists.h"

#include <filesystem>
#include <functional>
#include <string>

namespace sim::validate {

/// Told the C name of each function before it is called. For a process that uses one copy of one plugin: its words lead
/// to the listener from then on.
class CallTracer {
public:
    using Listener = std::function<void(const std::string &function)>;

    /// `entryPoint` is the address of REALPluginMain in the copy of `file` that was loaded; nothing of it may have run
    /// yet. The lists say what is a function, and of which library. Throws when there is nothing to hear.
    CallTracer(const std::filesystem::path &file, const void *entryPoint, const ImportLists &lists, Listener listener);
    CallTracer(const CallTracer &) = delete;
    CallTracer &operator=(const CallTracer &) = delete;
    /// Nothing of the plugin may run afterwards.
    ~CallTracer();
};

} // namespace sim::validate
