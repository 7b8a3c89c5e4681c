#include "tests/faults/fault_matrix.h"

#include "simulator/macos/control/faults.h"
#include "tests/spotlight/support/exception_table.h"
#include "tests/support/plugin_watch.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <typeinfo>

namespace tests::faults {

namespace {

namespace system = sim::macos::faults;

using sim::host::Host;
using sim::host::RaisedException;

struct Kind {
    const char *name;
    void (*thrower)();
};

/// What hosts throw, by what becomes of it.
constexpr Kind kKinds[] = {
    {"a range error", [] { throw std::range_error("so far"); }},
    {"an out-of-range error", [] { throw std::out_of_range("so far"); }},
    {"an overflow error", [] { throw std::overflow_error("so much"); }},
    {"an underflow error", [] { throw std::underflow_error("so little"); }},
    {"a bad cast", [] { throw std::bad_cast(); }},
    {"another exception", [] { throw std::logic_error("no sense"); }},
    {"a number", [] { throw 42; }},
};

/// What the library asks for in vain has no place in the host's table. Without the first service there is no start, and
/// no host keeps quiet about its age and has the layouts of a new one.
bool CanBeWithheld(const std::string &service) {
    static const std::vector<std::string> table = Host::ServiceNames();
    return service != "RegisterPluginVersion" && service != "REALGetRBVersion" &&
           std::ranges::find(table, service) != table.end();
}

/// One that throws instead of letting go has kept what it was given.
bool LetsGo(const std::string &service) { return service == "REALUnlockString" || service == "REALUnlockObject"; }

const std::vector<ExceptionRow> &Table() {
    static const std::vector<ExceptionRow> rows = ReadExceptionTable();
    return rows;
}

/// A host's dictionary does so by itself when it is asked for a key that it does not have: one that it could not tell.
bool IsTheHostsOwn(const RaisedException &raised) { return raised.className == "KeyNotFoundException"; }

bool IsInTable(const std::string &member, const RaisedException &raised) {
    return std::ranges::any_of(Table(), [&](const ExceptionRow &row) {
        return row.exception == raised.className && (row.member == member || row.member == "*") &&
               (!raised.message || row.HasMessage(*raised.message));
    });
}

std::string AgeText(double version) {
    return version > 0 ? "a host of " + std::to_string(version).substr(0, 7) : "a host that does not tell its age";
}

} // namespace

void Report::operator+=(const Report &other) {
    cases += other.cases;
    complaints.insert(complaints.end(), other.complaints.begin(), other.complaints.end());
}

FaultMatrix::FaultMatrix(std::filesystem::path plugin, double version) : plugin_(std::move(plugin)), version_(version) {
    Setting setting = At();
    setting.recordsCalls = true;
    Stage stage(setting);
    std::set<std::string> asked;
    const auto noteRequests = [&] {
        for (const auto &request : stage.Host().Requests())
            asked.insert(request.name);
    };
    noteRequests();
    for (Deed &deed : DeedsOf(stage)) {
        Known known{std::move(deed)};
        FailedAllocation counter(0);
        const Fault none{"no fault",
                         [&](Stage &on) {
                             on.Host().ClearLog();
                             system::Reset();
                             counter.Forget();
                         },
                         [&](Stage &on) {
                             known.fallibleCalls = system::Count();
                             known.allocations = counter.Count();
                             for (const std::string &call : on.Host().CallNames())
                                 ++known.services[call];
                             noteRequests();
                         }};
        const Outcome outcome = Do(stage, known.deed, none);
        known.right.insert(outcome.leaves.begin(), outcome.leaves.end());
        known_.push_back(std::move(known));
    }
    std::erase_if(asked, [](const std::string &name) { return !CanBeWithheld(name); });
    services_.assign(asked.begin(), asked.end());
}

FaultMatrix::Outcome FaultMatrix::Do(Stage &stage, const Deed &deed, const Fault &fault) {
    Outcome outcome;
    bool isUnder = false;
    const Around around{[&] {
                            // What went wrong while it got ready is not its own.
                            stage.Host().TakeRaised();
                            isUnder = true;
                            fault.begin(stage);
                        },
                        [&] {
                            fault.end(stage);
                            isUnder = false;
                        }};
    try {
        deed.act(stage, around, outcome.leaves);
        stage.Host().RethrowFromHandlers();
    } catch (const sim::host::ProgramError &) {
        throw;
    } catch (...) {
        outcome.threw = true;
    }
    if (isUnder)
        fault.end(stage);
    outcome.raised = stage.Host().TakeRaised();
    outcome.outOfBalance = stage.NewlyOutOfBalance();
    return outcome;
}

std::string FaultMatrix::WhatIsWrong(const Known &known, const Outcome &outcome) const {
    for (const std::string &leaf : outcome.leaves)
        if (!known.right.contains(leaf) && !IsNeutral(leaf))
            return "gives " + leaf;
    for (const RaisedException &raised : outcome.raised)
        if (!IsInTable(known.deed.member, raised) && !IsTheHostsOwn(raised))
            return "raises " + raised.className + ": " + raised.message.value_or("(no message)");
    return outcome.outOfBalance.empty() ? "" : outcome.outOfBalance.front();
}

void FaultMatrix::Try(Stage &stage, const Known &known, const Fault &fault, Report &report) const {
    if (!stage.Has(known.deed.className))
        return;
    report.cases++;
    const Outcome outcome = Do(stage, known.deed, fault);
    std::string wrong = WhatIsWrong(known, outcome);
    if (wrong.empty() && outcome.threw && !fault.throws)
        wrong = "throws";
    if (!wrong.empty())
        report.complaints.push_back(known.deed.name + ", " + fault.name + ", on " + AgeText(version_) + ": " + wrong);
}

Report FaultMatrix::Without(const std::set<std::string, std::less<>> &services) const {
    Report report;
    std::string names;
    for (const std::string &service : services)
        names += (names.empty() ? "without " : " and ") + service;
    Stage stage(At(services));
    for (const Known &known : known_)
        Try(stage, known, {names}, report);
    return report;
}

Report FaultMatrix::WithoutEachService() const {
    Report report;
    for (const std::string &service : services_)
        report += Without({service});
    return report;
}

Report FaultMatrix::WithoutEachPair(const Progress &progress) const {
    Report report;
    const size_t pairs = services_.size() * (services_.size() - 1) / 2;
    size_t done = 0;
    for (size_t one = 0; one < services_.size(); one++)
        for (size_t other = one + 1; other < services_.size(); other++) {
            report += Without({services_[one], services_[other]});
            if (!progress(static_cast<double>(++done) / static_cast<double>(pairs)))
                return report;
        }
    return report;
}

Report FaultMatrix::WithEachCallFailing() const {
    Report report;
    Stage stage(At());
    for (const Known &known : known_)
        for (size_t number = 1; number <= known.fallibleCalls; number++)
            Try(stage, known,
                {"with call " + std::to_string(number) + " of the system failing",
                 [number](Stage &) {
                     system::Reset();
                     system::FailCall(number);
                 },
                 [](Stage &) { system::Reset(); }},
                report);
    return report;
}

Report FaultMatrix::WithEachAllocationFailing() const {
    Report report;
    std::unique_ptr<FailedAllocation> failed;
    Stage stage(At());
    for (const Known &known : known_)
        for (int number = 1; number <= known.allocations; number++)
            Try(stage, known,
                {"without memory at allocation " + std::to_string(number),
                 [&, number](Stage &) { failed = std::make_unique<FailedAllocation>(number); },
                 [&](Stage &) { failed.reset(); }},
                report);
    return report;
}

Report FaultMatrix::WithEachServiceThrowing() const {
    Report report;
    Stage stage(At());
    for (const Known &known : known_)
        for (const auto &called : known.services) {
            const std::string &service = called.first;
            const int32_t count = called.second;
            if (!known.deed.canThrow || LetsGo(service))
                continue;
            for (const int32_t number : std::set<int32_t>{1, std::min(2, count), count})
                for (const Kind &kind : kKinds) {
                    if (number > 1 && &kind != &kKinds[static_cast<size_t>(number) % std::size(kKinds)])
                        continue;
                    Try(stage, known,
                        {service + " throwing " + kind.name + " at call " + std::to_string(number),
                         [&](Stage &on) { on.Host().Throw(service, kind.thrower, number, number); },
                         [&](Stage &on) { on.Host().Mend(service); }, true},
                        report);
                }
        }
    return report;
}

} // namespace tests::faults
