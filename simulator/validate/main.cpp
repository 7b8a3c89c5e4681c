// Looks for faults in a built library. See --help.
#include "simulator/validate/checks.h"
#include "simulator/validate/options.h"

#include <algorithm>
#include <cstdio>

namespace {

using namespace sim::validate;

enum ExitCode { kGood = 0, kFaulty = 1, kWrongUsage = 2 };

struct Sum {
    size_t checks = 0;
    size_t looked = 0;
    size_t calls = 0;
    size_t bad = 0;
};

std::vector<Check> ChecksOf(int level, uint32_t seed) {
    std::vector<Check> checks;
    for (const auto &group : {FormChecks(), LinkChecks(), RegistrationChecks(), BehaviourChecks(seed)})
        for (const Check &check : group)
            if (check.level == level)
                checks.push_back(check);
    return checks;
}

void Print(const std::string &line) {
    std::fputs((line + "\n").c_str(), stdout);
    std::fflush(stdout);
}

Findings Run(const Check &check, const Subject &subject) {
    try {
        return check.run(subject);
    } catch (const std::exception &error) {
        Findings findings;
        findings.broken = error.what();
        return findings;
    }
}

void Report(const Check &check, const Findings &findings) {
    constexpr size_t kMost = 10;
    if (findings.AreGood()) {
        Print("  good    " + check.title + " (" + std::to_string(findings.looked) +
              (findings.calls > 0 ? " lines, " + std::to_string(findings.calls) + " calls" : "") + ")");
        return;
    }
    Print((findings.faults.empty() ? "  BROKEN  " : "  FAULTY  ") + check.title);
    if (!findings.broken.empty())
        Print("          it did not come to its end: " + findings.broken);
    else if (findings.looked == 0)
        Print("          it looked at nothing");
    for (size_t i = 0; i < std::min(findings.faults.size(), kMost); i++)
        Print("          " + findings.faults[i]);
    if (findings.faults.size() > kMost)
        Print("          and " + std::to_string(findings.faults.size() - kMost) + " more");
}

std::string Text(const Sum &sum) {
    return std::to_string(sum.checks) + " checks, " + std::to_string(sum.looked) + " things looked at, " +
           std::to_string(sum.calls) + " calls of host and system equal to the native build's";
}

ExitCode Validate(const Options &options) {
    Print("validating " + options.subject.library.string() + " to level " + std::to_string(options.level) + ", seed " +
          std::to_string(options.subject.seed));
    Sum sum;
    for (int level = 1; level <= options.level && sum.bad == 0; level++) {
        Print("level " + std::to_string(level));
        for (const Check &check : ChecksOf(level, options.subject.seed)) {
            const Findings findings = Run(check, options.subject);
            Report(check, findings);
            sum.checks++;
            sum.looked += findings.looked;
            if (findings.AreGood())
                sum.calls += findings.calls;
            else
                sum.bad++;
        }
        if (sum.bad > 0)
            Print("NOT GOOD: at level " + std::to_string(level) + ", " + std::to_string(sum.bad) + " of " + Text(sum));
    }
    if (sum.bad > 0)
        return kFaulty;
    Print("GOOD to level " + std::to_string(options.level) + ": " + Text(sum));
    return kGood;
}

} // namespace

int main(int count, char **words) {
    try {
        const Options options = ReadOptions({words + 1, static_cast<size_t>(count - 1)});
        if (options.wantsHelp) {
            std::fputs(HelpText().c_str(), stdout);
            return kGood;
        }
        return Validate(options);
    } catch (const UsageError &error) {
        std::fprintf(stderr, "spotlight-validate: %s\n", error.what());
        return kWrongUsage;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "spotlight-validate: %s\n", error.what());
        return kFaulty;
    }
}
