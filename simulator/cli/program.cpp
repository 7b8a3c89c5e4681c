#include "simulator/cli/program.h"

#include "simulator/cli/call_trace.h"
#include "simulator/cli/tasks.h"
#include "simulator/cli/text_width.h"

#include <algorithm>
#include <cstdio>

namespace sim::cli {
namespace {

// Only the first line is cleaned of what a terminal would obey; what follows it was written to be shown.
void Complain(const std::string &sentence) {
    const size_t end = std::min(sentence.find('\n'), sentence.size());
    std::fprintf(stderr, "%s: %s%s\n", kProgram, Printable(sentence.substr(0, end)).c_str(), sentence.c_str() + end);
}

// Returns the number of the signal that ended it too early.
int DoTask(Session &session, const Options &options, const Output &output) {
    switch (options.task) {
    case Options::Task::kQuery:
        return RunQuery(session, options, output);
    case Options::Task::kShow:
        ShowFile(session, options, output);
        break;
    case Options::Task::kAttributes:
        ShowAttributes(session, output);
        break;
    case Options::Task::kHelp:
        break; // needs no plugin
    }
    return 0;
}

// What the plugin raised although nothing was asked of it that should raise, and what it has not given back.
bool EndsWell(Session &session) {
    bool isWell = true;
    for (const host::RaisedException &raised : session.Host().TakeRaised()) {
        Complain("the plugin raised " + raised.className + ": " + raised.message.value_or("(no message)"));
        isWell = false;
    }
    for (const std::string &line : session.Balance()) {
        Complain("out of balance: " + line);
        isWell = false;
    }
    return isWell;
}

int RunWith(const Options &options) {
    Output output = Output::For(options.format);
    if (options.trace)
        output.notes = output.notes.ThatOnlyScrolls();
    if (options.task == Options::Task::kHelp) {
        output.results.Write(HelpText());
        return output.results.IsWell() ? kDone : kFailed;
    }
    SessionOptions sessionOptions{.plugin = options.plugin};
    sessionOptions.host.version = options.hostVersion;
    sessionOptions.host.recordCalls = false;
    std::optional<CallTrace> trace;
    if (options.trace)
        sessionOptions = trace.emplace(Screen::Of(stderr)).Heard(std::move(sessionOptions));
    Session session(std::move(sessionOptions));
    if (trace)
        trace->Start(session);
    const int signal = DoTask(session, options, output);
    if (!output.results.IsWell()) {
        Complain("the output could not be written");
        return kFailed;
    }
    if (!EndsWell(session))
        return kFailed;
    return signal == 0 ? kDone : kSignalled + signal;
}

} // namespace

int Run(std::span<const char *const> words) {
    try {
        return RunWith(ReadOptions(words));
    } catch (const UsageError &error) {
        Complain(error.what());
        return kWrongUsage;
    } catch (const std::exception &error) {
        Complain(error.what());
        return kFailed;
    }
}

} // namespace sim::cli
