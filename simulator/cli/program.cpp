#include "simulator/cli/program.h"

#include "simulator/cli/tasks.h"
#include "simulator/cli/text_width.h"

#include <cstdio>

namespace sim::cli {
namespace {

void Complain(const std::string &sentence) { std::fprintf(stderr, "%s: %s\n", kProgram, Printable(sentence).c_str()); }

void DoTask(Session &session, const Options &options, const Screen &screen) {
    switch (options.task) {
    case Options::Task::kQuery:
        return RunQuery(session, options, screen);
    case Options::Task::kShow:
        return ShowFile(session, options, screen);
    case Options::Task::kAttributes:
        return ShowAttributes(session, screen);
    case Options::Task::kHelp:
        break; // needs no plugin
    }
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

ExitCode RunWith(const Options &options) {
    const Screen screen = Screen::OfStandardOutput();
    if (options.task == Options::Task::kHelp) {
        screen.Write(HelpText());
        return screen.IsWell() ? kDone : kFailed;
    }
    SessionOptions sessionOptions{.plugin = options.plugin};
    sessionOptions.host.version = options.hostVersion;
    sessionOptions.host.recordCalls = false;
    Session session(std::move(sessionOptions));
    DoTask(session, options, screen);
    if (!screen.IsWell()) {
        Complain("the output could not be written");
        return kFailed;
    }
    return EndsWell(session) ? kDone : kFailed;
}

} // namespace

ExitCode Run(std::span<const char *const> words) {
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
