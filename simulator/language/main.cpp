// Runs one program of the host language with the plugin. See usage below.
#include "simulator/cli/call_trace.h"
#include "simulator/cli/interrupt.h"
#include "simulator/language/options.h"
#include "simulator/language/program.h"

#include <cstdio>

namespace {

using namespace sim;

enum ExitCode { kDone = 0, kFailed = 1, kWrongProgram = 2 };

constexpr const char *kUsage = "usage: spotlight-program --plugin LIBRARY [--host-version V] [--trace] [--steps N] "
                               "PROGRAM.bas [ARGUMENT...]\n";

void Print(const std::string &line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

ExitCode Complain(const std::string &text, ExitCode code) {
    std::fprintf(stderr, "%s%s", text.c_str(), text.ends_with('\n') ? "" : "\n");
    return code;
}

/// What the plugin has not given back when the program is over.
ExitCode EndWith(Session &session, ExitCode code) {
    for (const std::string &line : session.Balance())
        code = Complain("out of balance: " + line, kFailed);
    return code;
}

ExitCode Run(const language::CommandLine &line) {
    const language::Sources sources = language::ReadSources(line.program);
    SessionOptions options{.plugin = line.plugin};
    options.host.version = line.hostVersion;
    options.host.recordCalls = false;
    std::optional<cli::CallTrace> trace;
    if (line.trace)
        options = trace.emplace(cli::Screen::Of(stderr)).Heard(std::move(options));
    Session session(std::move(options));
    if (trace)
        trace->Start(session);
    const cli::InterruptWatch watch;
    const language::RunOptions runOptions{line.arguments, Print, {line.steps, [&] { return watch.IsInterrupted(); }}};
    const language::Ending ending = RunProgram(session, sources, runOptions);
    if (ending.kind == language::Ending::Kind::kException)
        return EndWith(session, Complain(ending.message, kFailed));
    if (ending.kind == language::Ending::Kind::kStopped && !watch.IsInterrupted())
        return EndWith(session, Complain("stopped after " + std::to_string(line.steps) + " steps", kFailed));
    return EndWith(session, kDone);
}

} // namespace

int main(int count, char **words) {
    try {
        return Run(language::ReadCommandLine({words + (count > 0), static_cast<size_t>(count > 0 ? count - 1 : 0)}));
    } catch (const language::UsageError &error) {
        return Complain(std::string(error.what()) + "\n" + kUsage, kWrongProgram);
    } catch (const std::exception &error) {
        return Complain(error.what(), dynamic_cast<const language::WrongProgram *>(&error) ? kWrongProgram : kFailed);
    }
}
