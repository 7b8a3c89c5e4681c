// The look-up of the functions that not every system exports, done more than once in a process, as no host does it.
#include <doctest/doctest.h>

#include "host/services.h"
#include "simulator/macos/control/environment.h"
#include "simulator/macos/control/faults.h"
#include "spotlight/query_sorting.h"
#include "tests/whitebox/fake_resolver.h"
#include "tests/whitebox/restored.h"

namespace environment = sim::macos::environment;
namespace faults = sim::macos::faults;

namespace {

HostBoolean runsBuiltApplication = 0;

HostBoolean RunsBuiltApplication() { return runsBuiltApplication; }

/// Forgets what was found.
void Forget() {
    if (CoreServicesFramework)
        CFRelease(CoreServicesFramework);
    CoreServicesFramework = nullptr;
    myMDQueryGetSortOptionFlagsForAttribute = nullptr;
    myMDQuerySetSortOptionFlagsForAttribute = nullptr;
    myMDQuerySetSortOrder = nullptr;
}

/// Whether the framework is found, and with it the sort order, which the usual system exports.
bool IsFoundByLookUp() {
    LoadSortFunctions();
    CHECK((CoreServicesFramework != nullptr) == (myMDQuerySetSortOrder != nullptr));
    const bool isFound = CoreServicesFramework != nullptr;
    Forget();
    return isFound;
}

struct SystemAsUsual {
    SystemAsUsual() { Reset(); }
    ~SystemAsUsual() { Reset(); }
    SystemAsUsual(const SystemAsUsual &) = delete;
    SystemAsUsual &operator=(const SystemAsUsual &) = delete;

    static void Reset() {
        environment::Reset();
        faults::Reset();
    }
};

} // namespace

TEST_CASE(
    "A look-up of the sort functions that failed can be repeated, wherever it failed, and so can one that did not") {
    const SystemAsUsual system;
    const whitebox::Restored inRuntime(REALinRuntime);
    whitebox::FakeResolver resolver;
    resolver.Offer("REALinRuntime", RunsBuiltApplication);

    runsBuiltApplication = 0;
    CHECK_FALSE(IsFoundByLookUp());
    runsBuiltApplication = 1;
    environment::SetFindFolderResult(fnfErr);
    CHECK_FALSE(IsFoundByLookUp());
    environment::Reset();
    for (const char *step : {"CFURLCreateFromFSRef", "CFURLCreateCopyAppendingPathComponent", "CFBundleCreate"}) {
        CAPTURE(step);
        faults::FailEvery(step);
        CHECK_FALSE(IsFoundByLookUp());
        faults::Reset();
    }
    environment::SetFrameworkLoads(false);
    CHECK_FALSE(IsFoundByLookUp());
    environment::Reset();
    CHECK(IsFoundByLookUp());
    CHECK(IsFoundByLookUp());
}

TEST_CASE("A sort function that the framework has come to export is found by the next look-up, and no other one") {
    const SystemAsUsual system;
    const whitebox::Restored inRuntime(REALinRuntime);
    whitebox::FakeResolver resolver;
    resolver.Offer("REALinRuntime", RunsBuiltApplication);
    runsBuiltApplication = 1;
    const char *const names[] = {"MDQueryGetSortOptionFlagsForAttribute", "MDQuerySetSortOptionFlagsForAttribute",
                                 "MDQuerySetSortOrder"};
    for (int exported = -1; exported < 3; exported++) {
        CAPTURE(exported);
        for (int i = 0; i < 3; i++)
            environment::SetExports(names[i], i == exported);
        LoadSortFunctions();
        CHECK((myMDQueryGetSortOptionFlagsForAttribute != nullptr) == (exported == 0));
        CHECK((myMDQuerySetSortOptionFlagsForAttribute != nullptr) == (exported == 1));
        CHECK((myMDQuerySetSortOrder != nullptr) == (exported == 2));
        Forget();
    }
}
