#include "tests/support/call_log.h"

#include "simulator/session/system_functions.h"
#include "tests/support/plugin_watch.h"

#include <algorithm>

namespace tests {

CallLog::CallLog(sim::Session &session) : session_(session) {
    session.Host().Listen(this);
    PluginWatch::Instance().listener = [this](std::string_view name, const uint32_t *arguments) {
        const sim::SystemFunction *function = sim::FindSystemFunction(name);
        if (function && !function->onlyLooks)
            lines_.push_back(sim::DescribeCall(*function, arguments, sim::Detail::kType));
    };
}

void CallLog::Begins(sim::host::Callee callee, const std::string &call) {
    if (callee == sim::host::Callee::kService)
        lines_.push_back(call);
}

CallLog::~CallLog() {
    PluginWatch::Instance().listener = {};
    session_.Host().Listen(nullptr);
}

CallLines CallLog::OfRaising(const std::string &className, const std::string &message) {
    const std::string text = '"' + message + '"';
    return {"REALBuildString(..., " + std::to_string(message.size()) + ")",
            "REALSetStringEncoding(" + text + ", 1536)",
            "PluginNewInstance(\"" + className + "\")",
            "REALSetPropValueString(" + className + ", \"Message\", " + text + ")",
            "REALSetPropValueInteger(" + className + ", \"ErrorNumber\", 0)",
            "RuntimeRaiseException(" + className + ")",
            "REALUnlockObject(" + className + ")",
            "REALUnlockString(" + text + ")"};
}

CallLines CallLog::Take(const std::vector<std::string> &functions) {
    CallLines lines = Take();
    std::erase_if(lines, [&](const std::string &line) {
        return std::ranges::none_of(functions, [&](const std::string &name) { return line.starts_with(name + '('); });
    });
    return lines;
}

} // namespace tests
