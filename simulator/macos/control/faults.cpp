// Counting fallible calls, and choosing the one that fails.
#include "simulator/macos/control/faults.h"

#include "simulator/macos/control/stop.h"

#include <algorithm>
#include <set>

namespace sim::macos {

namespace {

struct Plan {
    std::set<std::string, std::less<>> names;
    std::size_t count = 0;
    std::size_t failed = 0;
    std::size_t callsUntilAny = 0; // 0: none
    std::string chosen;
    std::size_t callsUntilChosen = 0; // 0: none
    bool everyChosen = false;
};

Plan &ThePlan() {
    static Plan *plan = new Plan;
    return *plan;
}

int ownCalls = 0;

bool CountsDownToZero(std::size_t &calls) { return calls > 0 && --calls == 0; }

void Choose(std::string_view name, std::size_t n, bool every) {
    Plan &plan = ThePlan();
    if (!plan.names.contains(name))
        Stop("no call that can fail is named " + std::string(name));
    plan.chosen = name;
    plan.callsUntilChosen = n;
    plan.everyChosen = every;
}

} // namespace

FallibleCall::FallibleCall(const char *name) : name_(name) { ThePlan().names.insert(name); }

bool FallibleCall::Fails() const {
    if (ownCalls > 0)
        return false;
    Plan &plan = ThePlan();
    ++plan.count;
    bool fails = CountsDownToZero(plan.callsUntilAny);
    if (plan.chosen == name_)
        fails |= plan.everyChosen || CountsDownToZero(plan.callsUntilChosen);
    plan.failed += fails;
    return fails;
}

OwnCalls::OwnCalls() { ++ownCalls; }
OwnCalls::~OwnCalls() { --ownCalls; }

namespace faults {

void Reset() {
    Plan &plan = ThePlan();
    plan.count = plan.failed = plan.callsUntilAny = plan.callsUntilChosen = 0;
    plan.chosen.clear();
    plan.everyChosen = false;
}

void FailCall(std::size_t n) { ThePlan().callsUntilAny = n; }

void FailCall(std::string_view name, std::size_t n) { Choose(name, n, false); }

void FailEvery(std::string_view name) { Choose(name, 0, true); }

std::size_t Count() { return ThePlan().count; }

std::size_t Failed() { return ThePlan().failed; }

std::vector<std::string> Names() { return {ThePlan().names.begin(), ThePlan().names.end()}; }

} // namespace faults

} // namespace sim::macos
