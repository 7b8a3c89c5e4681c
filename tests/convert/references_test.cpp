// References balance whatever fails: each creation of the system in turn, each service of the host missing in turn, and
// each single call of a service giving nothing or throwing.
#include "tests/convert/whole_values.h"
#include "tests/support/fault.h"

#include <doctest/doctest.h>

#include <algorithm>

using sim::host::Value;
using tests::CoreValue;
using tests::Fault;
using tests::HostKind;
using tests::kHostKinds;
using tests::OptionsOf;
using tests::TemporaryFolder;

namespace ledger = sim::macos::ledger;

namespace {

/// A session with one whole value of each world, made once.
struct Values {
    explicit Values(const HostKind &kind)
        : session({.plugin = tests::PluginPath(), .host = OptionsOf(kind)}),
          item(tests::ItemWith(session, tests::WholeCoreValue(folder).Get())),
          value(tests::WholeHostValue(session.Host(), folder)), query(tests::NewQuery(session)) {}

    /// Both directions, and what comes of them dropped.
    void Convert() {
        item.Call("GetAttribute", "value");
        query.Call("CountOfResultsWithAttributeValue", "value", value);
    }

    /// What is out of balance, for one who knows what there was before.
    std::vector<std::string> Findings(const ledger::Snapshot &before) {
        auto lines = session.Host().Balance();
        const std::string system = ledger::Since(before).ToText();
        if (!system.empty())
            lines.push_back(system);
        return lines;
    }

    TemporaryFolder folder;
    sim::Session session;
    sim::host::Object item;
    Value value;
    sim::host::Object query;
};

void CheckBalanced(Values &values, const ledger::Snapshot &before) {
    for (const std::string &line : values.Findings(before))
        ADD_FAIL_CHECK_AT(__FILE__, __LINE__, "out of balance: " << line);
}

bool GivesUp(const std::string &service) { return service == "REALUnlockObject" || service == "REALUnlockString"; }

/// Taking and giving up references: a host that skips a call of those has itself to blame.
bool Counts(const std::string &service) {
    return GivesUp(service) || service == "REALLockObject" || service == "REALLockString";
}

struct Used {
    std::string service;
    int32_t calls;
};

/// Every service that the conversions ask for and have, and how often each is called.
std::vector<Used> ServicesUsed(const HostKind &kind) {
    Values values(kind);
    std::vector<Used> used;
    values.session.Host().ClearLog();
    values.Convert();
    values.session.Host().TakeRaised();
    for (const std::string &name : sim::host::Host::ServiceNames())
        if (const int32_t calls = values.session.Host().CallCount(name))
            used.push_back({name, calls});
    return used;
}

/// Runs a check on hosts of every kind.
template <class Check> void OnEachKindOfHost(Check check) {
    for (const HostKind &kind : kHostKinds)
        SUBCASE(kind.name) { check(kind); }
}

} // namespace

TEST_CASE("Both directions over every kind of value leave every reference where it was") {
    OnEachKindOfHost([](const HostKind &kind) {
        Values values(kind);
        const auto before = ledger::Take();
        for (int i = 0; i < 3; i++)
            values.Convert();
        CheckBalanced(values, before);
        CHECK(values.session.Host().TakeRaised().empty());
    });
}

TEST_CASE("Each creation of the system failing in turn leaves every reference where it was, and raises nothing") {
    OnEachKindOfHost([](const HostKind &kind) {
        Values values(kind);
        size_t n = 0;
        for (bool hasFailed = true; hasFailed;) {
            const Fault fault(++n);
            CAPTURE(n);
            const auto before = ledger::Take();
            values.Convert();
            CheckBalanced(values, before);
            CHECK(values.session.Host().TakeRaised().empty());
            hasFailed = fault.Failed() > 0;
        }
        CHECK(n > 60);
    });
}

TEST_CASE("All creations of one kind failing at once leave every reference where it was") {
    OnEachKindOfHost([](const HostKind &kind) {
        Values values(kind);
        for (const std::string &function : sim::macos::faults::Names()) {
            CAPTURE(function);
            const Fault fault(function);
            const auto before = ledger::Take();
            values.Convert();
            CheckBalanced(values, before);
        }
    });
}

TEST_CASE("Each host service missing in turn: no crash, no leak, nothing given up once too often") {
    OnEachKindOfHost([](const HostKind &kind) {
        const auto used = ServicesUsed(kind);
        CHECK(used.size() > 30);
        for (const Used &one : used) {
            const std::string &service = one.service;
            CAPTURE(service);
            Values values(kind);
            values.session.Host().Withhold(service);
            const auto before = ledger::Take();
            values.Convert();
            if (!GivesUp(service)) {
                CheckBalanced(values, before);
                continue;
            }
            // Nobody can give anything up, so it stays; but nothing may be lacking.
            for (const std::string &line : values.session.Host().Balance())
                CHECK(line.find(" lacks ") == std::string::npos);
            const auto difference = ledger::Since(before);
            CHECK(difference.gone.empty());
            for (const auto &change : difference.changed)
                CHECK(change.after.retainCount > change.before.retainCount);
        }
    });
}

TEST_CASE("Each single call of a host service giving nothing leaves every reference where it was") {
    OnEachKindOfHost([](const HostKind &kind) {
        const auto used = ServicesUsed(kind);
        Values values(kind);
        for (const Used &one : used) {
            const std::string &service = one.service;
            CAPTURE(service);
            if (Counts(service))
                continue;
            for (int32_t call = 1; call <= std::min(one.calls, 5); call++) {
                CAPTURE(call);
                values.session.Host().ReturnNothing(service, call, call);
                const auto before = ledger::Take();
                values.Convert();
                values.session.Host().Mend(service);
                CheckBalanced(values, before);
            }
        }
    });
}

TEST_CASE("A C++ exception from any call of a host service passes through and leaves every reference where it was") {
    struct Thrown {};
    OnEachKindOfHost([](const HostKind &kind) {
        const auto used = ServicesUsed(kind);
        Values values(kind);
        for (const Used &one : used) {
            const std::string &service = one.service;
            CAPTURE(service);
            if (Counts(service))
                continue;
            for (int32_t call = 1; call <= std::min(one.calls, 3); call++) {
                CAPTURE(call);
                values.session.Host().Throw(
                    service, [] { throw Thrown(); }, call, call);
                const auto before = ledger::Take();
                try {
                    values.Convert();
                } catch (const Thrown &) {
                }
                values.session.Host().Mend(service);
                values.session.Host().TakeRaised();
                CheckBalanced(values, before);
            }
        }
    });
}
