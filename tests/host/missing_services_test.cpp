// One program that uses all of the bridge, run on hosts that lack one service each: nothing crashes, every result is
// the right one or the neutral one, and nothing stays behind except what a host without the means cannot let go of.
// Which services those are is read off the host's own list of what it was asked for.
#include <doctest/doctest.h>

#include "simulator/macos/Carbon/search_window.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/CoreServices/metadata/query/asked_values.h"
#include "simulator/macos/CoreServices/metadata/query/query_scope.h"
#include "tests/host/front_doors.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

#include <CoreServices/CoreServices.h>

#include <algorithm>
#include <bit>
#include <set>

using namespace sim::host;
using namespace tests;

namespace {

/// Each step with what it gave, element by element.
struct Step {
    std::string name;
    std::vector<Value> results;
};

std::vector<Value> Elements(const Value &array) {
    return array.IsNil() ? std::vector<Value>() : array.As<Object>().Elements();
}

Value Shown(Host &host, const Text &text) {
    namespace searchwindow = sim::macos::searchwindow;
    searchwindow::Reset();
    host.GlobalWith("ShotlightQTX", {text});
    const auto &calls = searchwindow::Calls();
    Value shown = calls.empty() || !calls.front().text ? Value() : Value(sim::macos::Utf8(*calls.front().text));
    searchwindow::Reset();
    return shown;
}

std::vector<Value> Scope(const Object &query) {
    std::vector<Value> entries;
    const auto handle = std::bit_cast<MDQueryRef>(query.Get<int32_t>("Handle"));
    CFArrayRef scope = handle ? sim::macos::SearchScopeOf(handle) : nullptr;
    for (CFIndex i = 0; scope && i < CFArrayGetCount(scope); i++) {
        const CFTypeRef entry = CFArrayGetValueAtIndex(scope, i);
        entries.emplace_back(sim::macos::Utf8Of(CFGetTypeID(entry) == CFURLGetTypeID()
                                                    ? CFURLGetString(static_cast<CFURLRef>(entry))
                                                    : static_cast<CFStringRef>(entry)));
    }
    return entries;
}

std::vector<Value> Asked(const Object &query, const Value &value) {
    const sim::macos::AskedValues asked;
    query.CallWith("CountOfResultsWithAttributeValue", {"kMDItemFSName", value});
    std::vector<Value> times;
    for (const auto &seen : asked.Values())
        if (seen && CFGetTypeID(seen.Get()) == CFDateGetTypeID())
            times.emplace_back(CFDateGetAbsoluteTime(static_cast<CFDateRef>(seen.Get())));
    return times;
}

std::vector<Step> Run(Host &host) {
    std::vector<Step> steps;
    steps.push_back({"texts that the system got",
                     {Shown(host, {"abc", kUTF8}), Shown(host, {"abc", kMacRoman}), Shown(host, {"abc", kISOLatin1}),
                      Shown(host, {"abc", kUnknownEncoding})}});

    host.TakeRaised();
    const Value count = host.Create("MDQueryQTX").GetValue("ResultCount");
    std::vector<Value> raised = {count};
    for (const RaisedException &exception : host.TakeRaised()) {
        raised.emplace_back(exception.className);
        raised.emplace_back(exception.message.value_or(""));
        raised.emplace_back(exception.errorNumber.value_or(0));
    }
    steps.push_back({"an exception", raised});

    const Object query = host.Create("MDQueryQTX");
    query.CallWith("Constructor", {"kMDItemFSName == \"*\"", host.NewArray("string", {"kMDItemFSName", "kMDItemKind"}),
                                   host.NewArray("string", {"kMDItemFSSize"})});
    steps.push_back({"a query's text", {query.GetValue("QueryString")}});
    steps.push_back({"its value list", Elements(query.GetValue("ValueListAttributes"))});
    steps.push_back({"its sorting attributes", Elements(query.GetValue("SortingAttributes"))});
    steps.push_back({"a date", Asked(query, host.NewDate({2014, 6, 30, 23, 30, 59}))});

    const Object folders = host.NewArray("folderitem", {host.NewFolderItem("/"), host.NewFolderItem("/no such thing")});
    query.CallWith("SetSearchScope", {folders, host.NewArray("string", {"kMDQueryScopeHome"})});
    steps.push_back({"a scope", Scope(query)});

    const Object item = host.Create("MDItemQTX");
    item.CallWith("Constructor", {host.NewFolderItem("/")});
    steps.push_back({"an item's path", {item.GetValue("Path")}});
    steps.push_back({"its attributes", Elements(item.GetValue("AttributeNames"))});
    steps.push_back({"a type", {host.SharedWith("MDItemQTX", "AttributeType", {"kMDItemFSName"})}});
    host.TakeRaised();
    return steps;
}

bool IsNeutral(const Value &value) {
    return value.IsNil() || value == Value("") || value == Value(0) || value == Value(0.0) || value == Value(false);
}

bool Contains(const std::vector<Value> &all, const Value &one) {
    return std::find(all.begin(), all.end(), one) != all.end();
}

/// Every result is one of those that the step gives on a whole host, or neutral, and there are not more of them.
void CheckRightOrNeutral(const std::vector<Step> &found, const std::vector<Step> &right) {
    REQUIRE(found.size() == right.size());
    for (size_t i = 0; i < found.size(); i++) {
        CAPTURE(found[i].name);
        CHECK(found[i].results.size() <= right[i].results.size());
        for (const Value &result : found[i].results)
            CHECK((IsNeutral(result) || Contains(right[i].results, result)));
    }
}

/// Without these, what somebody holds for a while stays held.
bool LetsGo(const std::string &service) { return service == "REALUnlockString" || service == "REALUnlockObject"; }

/// A session that may keep references too many of the host's things, but none too few, and nothing of the system's.
class LeakingSession : public sim::Session {
public:
    explicit LeakingSession(const HostOptions &options) : Session({.plugin = PluginPath(), .host = options}) {}
    ~LeakingSession() {
        for (const std::string &line : Balance())
            if (line.find("that nobody gives up") == std::string::npos)
                ADD_FAIL_CHECK_AT(__FILE__, __LINE__, "out of balance: " << line);
    }
};

template <class Session> void CheckRun(const HostOptions &options, const std::vector<Step> &right) {
    Session session(options);
    CheckRightOrNeutral(Run(session.Host()), right);
}

struct NamedHost {
    std::string name;
    HostOptions options;
};

std::vector<NamedHost> NamedHosts() {
    std::vector<NamedHost> kinds;
    AtAges(std::initializer_list<std::optional<double>>{std::nullopt, 2011.4, 2012.5, 2013.04, 2016.1},
           [&](std::optional<double> age) {
               const std::string name = age ? std::to_string(*age) : "no version";
               kinds.push_back({name, OfVersion(age)});
               kinds.push_back({name + ", second names only", OfVersion(age)});
               kinds.back().options.secondNamesOnly = true;
               kinds.push_back(
                   {name + ", strings and arrays read by the host only", Without({"REALGetStringCFString"}, age)});
               kinds.back().options.directArrayStorage = false;
           });
    return kinds;
}

/// What a whole host was asked for after start-up, and what the program got there.
struct Whole {
    std::set<std::string> services;
    std::vector<Step> steps;
};

Whole RunWhole(const NamedHost &kind) {
    TestSession session(kind.options);
    session.Host().ClearLog();
    Whole whole;
    whole.steps = Run(session.Host());
    for (const Request &request : session.Host().Requests())
        if (request.answered)
            whole.services.insert(request.name);
    return whole;
}

} // namespace

TEST_CASE("The program gets every one of its results on a whole host of any age") {
    const Whole modern = RunWhole(NamedHosts().back());
    for (const Step &step : modern.steps) {
        CAPTURE(step.name);
        CHECK_FALSE(step.results.empty());
    }
    for (const NamedHost &kind : NamedHosts()) {
        CAPTURE(kind.name);
        const Whole whole = RunWhole(kind);
        CHECK(whole.services.size() >= 15);
        for (size_t i = 0; i < whole.steps.size(); i++) {
            CAPTURE(whole.steps[i].name);
            CHECK(whole.steps[i].results == modern.steps[i].results);
        }
    }
}

TEST_CASE("With any one service missing nothing crashes, results are right or neutral, and references balance") {
    for (const NamedHost &kind : NamedHosts()) {
        const Whole whole = RunWhole(kind);
        for (const std::string &service : whole.services) {
            CAPTURE(kind.name);
            CAPTURE(service);
            HostOptions options = kind.options;
            options.withheld.insert(service);
            if (LetsGo(service))
                CheckRun<LeakingSession>(options, whole.steps);
            else
                CheckRun<TestSession>(options, whole.steps);
        }
    }
}

TEST_CASE("With any one service giving nothing whenever it is called, the same holds") {
    for (const NamedHost &kind : NamedHosts()) {
        const Whole whole = RunWhole(kind);
        for (const std::string &service : whole.services) {
            if (LetsGo(service) || service == "REALLockString" || service == "REALLockObject")
                continue; // A host that says it holds or lets go of something and does not is broken, not poor.
            CAPTURE(kind.name);
            CAPTURE(service);
            TestSession session(kind.options);
            session.Host().ReturnNothing(service);
            CheckRightOrNeutral(Run(session.Host()), whole.steps);
        }
    }
}

TEST_CASE("With any one creation of the system failing nothing crashes, results are right or neutral, and references "
          "balance") {
    for (const NamedHost &kind : NamedHosts()) {
        const Whole whole = RunWhole(kind);
        size_t failures = 0;
        for (size_t n = 1; n == failures + 1; n++) {
            CAPTURE(kind.name);
            CAPTURE(n);
            TestSession session(kind.options);
            const Fault fault(n);
            const auto steps = Run(session.Host());
            failures += fault.Failed();
            CheckRightOrNeutral(steps, whole.steps);
        }
        CHECK(failures >= 15);
    }
}
