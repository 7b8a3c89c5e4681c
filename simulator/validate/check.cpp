#include "simulator/validate/check.h"

#include "simulator/validate/child.h"

#include <sstream>

namespace sim::validate {
namespace {

std::string Written(const Findings &findings) {
    std::string text = std::to_string(findings.looked) + "\n";
    for (const std::string &fault : findings.faults)
        text += fault + "\n";
    return text;
}

Findings Read(const std::string &text) {
    Findings findings;
    std::istringstream lines(text);
    lines >> findings.looked >> std::ws;
    for (std::string fault; std::getline(lines, fault);)
        findings.faults.push_back(fault);
    return findings;
}

} // namespace

Check Look(std::string title, int level, void (*look)(const Subject &, Findings &)) {
    return {std::move(title), level, [look](const Subject &subject) {
                const Ended ended = RunInChild(
                    [&] {
                        Findings findings;
                        look(subject, findings);
                        return Written(findings);
                    },
                    subject.patience);
                Findings findings = Read(ended.output);
                findings.broken = ended.fault;
                return findings;
            }};
}

} // namespace sim::validate
