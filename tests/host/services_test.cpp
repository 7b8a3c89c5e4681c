// The host's services as the plugin finds and uses them while a program runs: looked up at first use and once, under
// the older name where the newer is missing, again as long as they are missing, and element by element for arrays.
#include <doctest/doctest.h>

#include "tests/host/front_doors.h"
#include "tests/support/host_ages.h"

using namespace sim::host;
using namespace tests;

namespace {

using Calls = std::vector<std::string>;

const std::vector<Value> kThree = {"kMDItemFSName", "kMDItemKind", "kMDItemPath"};

std::vector<Value> ValueList(const Object &query) { return query.Get<Object>("ValueListAttributes").Elements(); }

} // namespace

TEST_CASE("A service is looked up when it is first needed, and never again once it was found") {
    TestSession session;
    Host &host = session.Host();
    CHECK(host.RequestCount("REALBuildString") == 0);
    const Object query = NewQuery(session);
    for (int i = 0; i < 5; i++)
        query.GetValue("QueryString");
    CHECK(host.CallCount("REALBuildString") == 5);
    CHECK(host.RequestCount("REALBuildString") == 1);
    CHECK(host.RequestCount("REALSetStringEncoding") == 1);
}

TEST_CASE(
    "A missing service makes the operation a silent no-op, is asked for at each use, and works once it is there") {
    TestSession session;
    Host &host = session.Host();
    host.WithholdFirst("REALBuildString", 2);
    const Object query = NewQuery(session, "kMDItemKind == \"x\"");
    CHECK(query.GetValue("QueryString").IsNil());
    CHECK(query.GetValue("QueryString").IsNil());
    CHECK(session.TakeException() == "");
    CHECK(query.Get<std::string>("QueryString") == "kMDItemKind == \"x\"");
    CHECK(query.Get<std::string>("QueryString") == "kMDItemKind == \"x\"");
    CHECK(host.RequestCount("REALBuildString") == 3);
}

TEST_CASE("A service that is withdrawn after it was found is still called") {
    TestSession session;
    const Object query = NewQuery(session, "kMDItemKind == \"x\"");
    query.GetValue("QueryString");
    session.Host().Withhold("REALBuildString");
    CHECK(query.Get<std::string>("QueryString") == "kMDItemKind == \"x\"");
}

TEST_CASE("A function of the host language is loaded once, and again only while it is missing") {
    HostOptions options = Without({"REALGetStringCFString"}, 2016.1);
    constexpr const char *kLenB = "LenB( s as string ) as integer";
    TestSession session(options);
    session.Host().WithholdFirst(kLenB, 1);
    CHECK(TextInCore(session, "abc") == u"");
    CHECK(TextInCore(session, "abc") == u"abc");
    CHECK(TextInCore(session, "abc") == u"abc");
    CHECK(session.Host().RequestCount(kLenB) == 2);
    CHECK(session.Host().CallCount("REALLoadGlobalMethod") == 2);
}

TEST_CASE("The insert function of an array is fetched anew for each element") {
    TestSession session;
    const Object query = NewQuery(session, "kMDItemFSName == \"*\"", kThree);
    CHECK(ValueList(query) == kThree);
    CHECK(session.Host().CallCount("PluginStringArrayInsertProc") == 3);
    CHECK(session.Host().CallCount("string array insert") == 3);
    CHECK(session.Host().RequestCount("PluginStringArrayInsertProc") == 1);
    CHECK(session.Host().RequestCount("RuntimeArrayDirectGetInsertProc") == 0);
}

TEST_CASE("Where the host has only the older insert service, it is used") {
    TestSession session(Without({"PluginStringArrayInsertProc"}));
    const Object query = NewQuery(session, "kMDItemFSName == \"*\"", kThree);
    CHECK(ValueList(query) == kThree);
    CHECK(session.Host().CallCount("RuntimeArrayDirectGetInsertProc") == 3);
    CHECK(session.Host().RequestCount("PluginStringArrayInsertProc") == 1);
}

TEST_CASE("Where the array has no insert function, the element is skipped") {
    TestSession session;
    const Object query = NewQuery(session, "kMDItemFSName == \"*\"", kThree);
    session.Host().ReturnNothing("PluginStringArrayInsertProc");
    CHECK(ValueList(query).empty());
    CHECK(session.TakeException() == "");
}

TEST_CASE("A host without any insert service gets empty arrays") {
    TestSession session(Without({"PluginStringArrayInsertProc", "RuntimeArrayDirectGetInsertProc"}));
    CHECK(ValueList(NewQuery(session, "kMDItemFSName == \"*\"", kThree)).empty());
    CHECK(session.Host().RequestCount("PluginStringArrayInsertProc") == 3);
    CHECK(session.TakeException() == "");
}

TEST_CASE("A host that makes no arrays gets nil instead of an array, and is not asked about that one") {
    TestSession session(Without({"RuntimeArrayCreateSingleDimBoundedArray"}));
    const Object query = NewQuery(session, "kMDItemFSName == \"*\"", kThree);
    CHECK(query.GetValue("ValueListAttributes").IsNil());
    CHECK(query.GetValue("SortingAttributes").IsNil());
    CHECK(session.Host().SharedWith("MDItemQTX", "AllAttributes", {}).IsNil());
    CHECK(session.Host().CallCount("PluginStringArrayInsertProc") == 0);
    CHECK(session.TakeException() == "");
}

TEST_CASE("A host with nothing but second names does all of it") {
    AtEveryAge([&](std::optional<double> age) {
        HostOptions options = HostOptions{.version = age};
        options.secondNamesOnly = true;
        TestSession session(options);
        CHECK(ValueList(NewQuery(session, "kMDItemFSName == \"*\"", kThree)) == kThree);
        NilQuery(session).GetValue("ResultCount");
        const auto raised = session.Host().TakeRaised();
        REQUIRE(raised.size() == 1);
        CHECK(raised.front().errorNumber == 0);
        const Object item = session.Host().Create("MDItemQTX");
        item.CallWith("Constructor", {session.Host().NewFolderItem("/")});
        CHECK(item.Get<std::string>("Path") == "/");
    });
}

TEST_CASE("Below 2016.0 array elements are read where they lie, without a call for each") {
    AtEveryAge([&](std::optional<double> age) {
        TestSession session(HostOptions{.version = age});
        const bool isDirect = age.value_or(0) < 2016.0;
        CHECK(ValueList(NewQuery(session, "kMDItemFSName == \"*\"", kThree)) == kThree);
        CHECK(session.Host().CallCount("RuntimeDirectReadStringArray") == (isDirect ? 0 : 3));
        // Once for each array, the sorting attributes' empty one too, and once for each element.
        CHECK(session.Host().CallCount("RuntimeUBound") == 5);
    });
}

TEST_CASE("Below 2016.0 an array that does not show its elements is read through the host") {
    AtEveryAge([&](std::optional<double> age) {
        HostOptions options = HostOptions{.version = age};
        options.directArrayStorage = false;
        TestSession session(options);
        CHECK(ValueList(NewQuery(session, "kMDItemFSName == \"*\"", kThree)) == kThree);
        CHECK(session.Host().CallCount("RuntimeDirectReadStringArray") == 3);
    });
}

TEST_CASE("Without \"RuntimeUBound\" an array counts as one of a single element") {
    AtEveryAge([&](std::optional<double> age) {
        TestSession session(Without({"RuntimeUBound"}, age));
        const Object query = session.Host().Create("MDQueryQTX");
        query.CallWith("Constructor", {"kMDItemFSName == \"*\"", session.Host().NewArray("string", kThree)});
        CHECK(ValueList(query) == std::vector<Value>{"kMDItemFSName"});
        CHECK(session.TakeException() == "");
    });
}

TEST_CASE("Without \"RuntimeDirectReadStringArray\" an array that hides its elements has empty ones") {
    TestSession session(Without({"RuntimeDirectReadStringArray"}, 2016.1));
    CHECK(ValueList(NewQuery(session, "kMDItemFSName == \"*\"", kThree)) == std::vector<Value>(3));
    CHECK(session.TakeException() == "");
}

TEST_CASE("Without \"REALLockString\" the elements that an array shows are not taken: the host is asked for each") {
    AtAges(std::initializer_list<std::optional<double>>{std::nullopt, 2013.04}, [&](std::optional<double> age) {
        TestSession session(Without({"REALLockString"}, age));
        CHECK(ValueList(NewQuery(session, "kMDItemFSName == \"*\"", kThree)) == kThree);
        CHECK(session.Host().CallCount("RuntimeDirectReadStringArray") == 3);
        CHECK(session.TakeException() == "");
    });
}
