// The look-up of the functions that not every system exports, done more than once in a process, as no host does it.
#include <doctest/doctest.h>

#include "host/services.h"
#include "simulator/macos/control/environment.h"
#include "simulator/macos/control/faults.h"
#include "spotlight/query.h"
#include "spotlight/query_sorting.h"
#include "tests/whitebox/fake_resolver.h"
#include "tests/whitebox/restored.h"
#include "tests/whitebox/small_host.h"

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

MDQueryRef lastAsked = nullptr;

/// Sees to it that the three functions are there, or are not. They note the query that they are given.
void Provide(bool areThere) {
    const decltype(myMDQueryGetSortOptionFlagsForAttribute) get = [](MDQueryRef query, CFStringRef) {
        lastAsked = query;
        return uint32_t{7};
    };
    const decltype(myMDQuerySetSortOptionFlagsForAttribute) set = [](MDQueryRef query, CFStringRef, uint32_t) {
        lastAsked = query;
        return Boolean{1};
    };
    const decltype(myMDQuerySetSortOrder) order = [](MDQueryRef query, CFArrayRef) {
        lastAsked = query;
        return Boolean{1};
    };
    myMDQueryGetSortOptionFlagsForAttribute = areThere ? get : nullptr;
    myMDQuerySetSortOptionFlagsForAttribute = areThere ? set : nullptr;
    myMDQuerySetSortOrder = areThere ? order : nullptr;
}

/// An object of the query class whose query is never looked into.
struct QueryObject {
    QueryObject() { QueryData(Self()).Handle = reinterpret_cast<MDQueryRef>(words); }
    REALobjectStruct *Self() { return reinterpret_cast<REALobjectStruct *>(words); }

    uint32_t words[16] = {};
};

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

TEST_CASE("A sort method has a function at its second call that was missing at its first, and lacks it at its third") {
    whitebox::SmallHost host(2013.04);
    QueryObject query;
    REALstringStruct *name = host.NewString("name", kCFStringEncodingASCII);
    _REALarrayString *names = host.NewArray({host.NewString("name", kCFStringEncodingASCII)}, true);
    for (const bool isThere : {false, true, false}) {
        CAPTURE(isThere);
        Provide(isThere);
        CHECK(rbMDQueryGetSortOptionFlagsForAttribute(query.Self(), name) == (isThere ? 7 : 0));
        CHECK(rbMDQuerySetSortOptionFlagsForAttribute(query.Self(), name, 1) == isThere);
        CHECK(rbMDQuerySetSortOrder(query.Self(), names) == isThere);
    }
    REALUnlockString(name);
}

TEST_CASE("Each sort method asks for the query of the object that it is called on") {
    whitebox::SmallHost host(2013.04);
    QueryObject queries[2];
    REALstringStruct *name = host.NewString("name", kCFStringEncodingASCII);
    _REALarrayString *names = host.NewArray({host.NewString("name", kCFStringEncodingASCII)}, true);
    Provide(true);
    for (QueryObject &query : queries) {
        const MDQueryRef own = QueryData(query.Self()).Handle;
        lastAsked = nullptr;
        rbMDQueryGetSortOptionFlagsForAttribute(query.Self(), name);
        CHECK(lastAsked == own);
        lastAsked = nullptr;
        rbMDQuerySetSortOptionFlagsForAttribute(query.Self(), name, 1);
        CHECK(lastAsked == own);
        lastAsked = nullptr;
        rbMDQuerySetSortOrder(query.Self(), names);
        CHECK(lastAsked == own);
    }
    Provide(false);
    REALUnlockString(name);
}
