#include "tests/simulator/language/program_run.h"

#include "simulator/macos/control/clock.h"
#include "tests/support/test_session.h"

#include <doctest/doctest.h>

namespace tests {

using sim::language::Ending;
using sim::language::Source;
using sim::language::Sources;

ProgramRun RunProgram(const std::string &text, const ProgramOptions &options) {
    TestSession session;
    sim::macos::VirtualClock clock(425833445); // 2014-06-30 15:04:05
    const sim::macos::ClockOverride useClock(clock);
    Sources sources;
    sources.push_back(std::make_unique<Source>(Source{"program", text}));
    if (!options.toolkit.empty())
        sources.push_back(std::make_unique<Source>(Source{"toolkit", options.toolkit}));
    ProgramRun run;
    const sim::language::RunOptions runOptions{
        options.arguments, [&run](const std::string &line) { run.output += line + "\n"; }, {options.steps, {}}};
    try {
        const Ending ending = sim::language::RunProgram(session, sources, runOptions);
        run.message = ending.message;
    } catch (const sim::language::WrongProgram &wrong) {
        run.message = wrong.what();
        run.isWrong = true;
    }
    return run;
}

std::string OutputOf(const std::string &text) {
    const ProgramRun run = RunProgram(text);
    CHECK_MESSAGE(run.message.empty(), run.message);
    return run.output;
}

std::string MistakesOf(const std::string &text) {
    const ProgramRun run = RunProgram(text);
    return run.isWrong ? run.message : "";
}

} // namespace tests
