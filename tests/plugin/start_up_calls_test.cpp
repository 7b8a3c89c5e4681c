// What start-up does, call by call, of the host and of the system.
#include <doctest/doctest.h>

#include "tests/plugin/default_system.h"
#include "tests/support/call_log.h"
#include "tests/support/plugin_watch.h"
#include "tests/support/test_session.h"

using tests::CallLines;
using tests::DefaultSystem;

namespace environment = sim::macos::environment;
namespace faults = sim::macos::faults;

namespace {

CallLines CallsOfStartUp(std::optional<double> version = 2013.04, bool runsBuiltApplication = true) {
    sim::SessionOptions options;
    options.plugin = tests::PluginPath();
    options.watch = &tests::PluginWatch::Instance();
    options.host.version = version;
    options.host.runsBuiltApplication = runsBuiltApplication;
    options.start = false;
    sim::Session session(std::move(options));
    tests::CallLog log(session);
    session.Start();
    return log.Take();
}

const CallLines kBeginning = {"REALGetRBVersion()", "RegisterPluginVersion(13)", "REALinRuntime()"};
const CallLines kRegistration = {"PluginRegisterClass(...)", "PluginRegisterClass(...)", "PluginRegisterClass(...)",
                                 "PluginRegisterModule(...)"};

CallLines WithSearch(const CallLines &search) {
    CallLines calls = kBeginning;
    calls.insert(calls.end(), search.begin(), search.end());
    calls.insert(calls.end(), kRegistration.begin(), kRegistration.end());
    return calls;
}

constexpr const char *kFolder = "<file:///System/Library/Frameworks/>";
constexpr const char *kFramework = "<file:///System/Library/Frameworks/CoreServices.framework>";

std::string Release(const char *what) { return std::string("CFRelease(") + what + ")"; }

/// The folder's domain is the number -32767, whatever the platform's headers call it.
const std::string kFind = "FSFindFolder(-32767, 'fram', true)";
const std::string kAppend =
    std::string("CFURLCreateCopyAppendingPathComponent(") + kFolder + ", \"CoreServices.framework\", false)";
const std::string kCreate = std::string("CFBundleCreate(") + kFramework + ")";

} // namespace

TEST_CASE("Start-up finds the framework by the folder -32767, loads it, lets go of the URLs and looks up three names") {
    CHECK(
        CallsOfStartUp() ==
        WithSearch({kFind, "CFURLCreateFromFSRef()", kAppend, kCreate, "CFBundleLoadExecutable()", Release(kFramework),
                    Release(kFolder), "CFBundleGetFunctionPointerForName(\"MDQueryGetSortOptionFlagsForAttribute\")",
                    "CFBundleGetFunctionPointerForName(\"MDQuerySetSortOptionFlagsForAttribute\")",
                    "CFBundleGetFunctionPointerForName(\"MDQuerySetSortOrder\")"}));
}

TEST_CASE("Start-up goes no further on the way to the framework than the step that fails") {
    const DefaultSystem system;
    CallLines search;
    SUBCASE("the folder is not found") {
        environment::SetFindFolderResult(fnfErr);
        search = {kFind};
    }
    SUBCASE("the folder has no URL") {
        faults::FailEvery("CFURLCreateFromFSRef");
        search = {kFind, "CFURLCreateFromFSRef()"};
    }
    SUBCASE("the framework has no URL") {
        faults::FailEvery("CFURLCreateCopyAppendingPathComponent");
        search = {kFind, "CFURLCreateFromFSRef()", kAppend, Release(kFolder)};
    }
    SUBCASE("the framework has no bundle") {
        faults::FailEvery("CFBundleCreate");
        search = {kFind, "CFURLCreateFromFSRef()", kAppend, kCreate, Release(kFramework), Release(kFolder)};
    }
    SUBCASE("the executable does not load") {
        environment::SetFrameworkLoads(false);
        search = {kFind,
                  "CFURLCreateFromFSRef()",
                  kAppend,
                  kCreate,
                  "CFBundleLoadExecutable()",
                  Release("CFBundle"),
                  Release(kFramework),
                  Release(kFolder)};
    }
    CHECK(CallsOfStartUp() == WithSearch(search));
}

TEST_CASE("On a host that does not run a built application start-up calls nothing of the system") {
    CHECK(CallsOfStartUp(2013.04, false) == WithSearch({}));
}
