// Levels 3 to 5: what programs see of the library, and what it calls of the host and of the system on the way, beside
// the same program with the native build.
#include "simulator/validate/checks.h"

#include "simulator/validate/child.h"
#include "simulator/validate/host_ages.h"
#include "simulator/validate/scenarios.h"

#include <sstream>

namespace sim::validate {
namespace {

using Play = std::function<void(Program &)>;

std::vector<std::string> Lines(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

Ended Transcript(const Subject &subject, const std::filesystem::path &library, const host::HostOptions &options,
                 const Play &play) {
    return RunInChild(
        [&] {
            Program program(subject, library, options);
            play(program);
            return program.Transcript();
        },
        subject.patience);
}

/// Where two transcripts part, and what came before.
std::string FirstDifference(const std::vector<std::string> &found, const std::vector<std::string> &expected) {
    size_t at = 0;
    while (at < found.size() && at < expected.size() && found[at] == expected[at])
        at++;
    const auto line = [&](const std::vector<std::string> &lines) {
        return at < lines.size() ? lines[at] : "(the end)";
    };
    std::string program = "the start";
    for (size_t i = 0; i < at; i++)
        if (found[i].starts_with("program "))
            program = found[i].substr(8);
    return "after \"" + program + "\": \"" + line(found) + "\", and with the native build \"" + line(expected) + "\"";
}

Findings Compare(const Subject &subject, const host::HostOptions &options, const Play &play) {
    Findings findings;
    const Ended expected = Transcript(subject, subject.native, options, play);
    if (!expected.fault.empty()) {
        findings.broken = "the native build: " + expected.fault;
        return findings;
    }
    const Ended found = Transcript(subject, subject.library, options, play);
    if (!found.fault.empty()) {
        findings.broken = found.fault;
        return findings;
    }
    const std::vector<std::string> foundLines = Lines(found.output), expectedLines = Lines(expected.output);
    findings.looked = expectedLines.size();
    for (const std::string &line : foundLines)
        findings.calls += IsCall(line);
    if (foundLines != expectedLines)
        findings.faults.push_back(FirstDifference(foundLines, expectedLines));
    else if (findings.calls == 0)
        findings.broken = "nothing was called";
    return findings;
}

Check Beside(std::string title, int level, host::HostOptions options, Play play) {
    return {std::move(title), level, [options = std::move(options), play = std::move(play)](const Subject &subject) {
                return Compare(subject, options, play);
            }};
}

/// The library may count on the first without a test, and without the second there is no class to make a query of.
bool IsRequired(const std::string &service) {
    return service == "RegisterPluginVersion" || service == "PluginRegisterClass";
}

host::HostOptions CurrentHost() { return kHostAges[5].Options(); }

} // namespace

std::vector<Check> BehaviourChecks(uint32_t seed) {
    std::vector<Check> checks;
    for (const Scenario &scenario : kScenarios)
        checks.push_back(Beside(scenario.title, 3, CurrentHost(), scenario.play));
    for (const HostAge &age : kHostAges)
        for (const Scenario &scenario : kScenarios)
            checks.push_back(
                Beside(std::string(scenario.title) + ", on " + age.title, 4, age.Options(), scenario.play));
    for (const HostAge &age : kHostAges)
        checks.push_back(Beside(std::string("anything, on ") + age.title + ", seed " + std::to_string(seed), 5,
                                age.Options(), DoAnything));
    for (const std::string &service : host::Host::ServiceNames()) {
        if (IsRequired(service))
            continue;
        host::HostOptions options = CurrentHost();
        options.withheld.insert(service);
        checks.push_back(Beside("a live query without " + service, 5, options, LiveThroughQuery));
    }
    return checks;
}

} // namespace sim::validate
