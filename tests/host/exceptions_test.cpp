// Exceptions as a host program catches them: their classes, messages and numbers, the order of the host's services in
// raising one, and what a host without some of them sees.
#include <doctest/doctest.h>

#include "tests/host/front_doors.h"

using namespace sim::host;
using namespace tests;

namespace {

using Calls = std::vector<std::string>;

constexpr const char *kMessage = "MDQuery Reference is nil";

/// Makes the plugin raise "NilObjectException" and checks that its method is neutral all the same.
void RaiseOnce(TestSession &session) {
    const Object query = NilQuery(session);
    session.Host().ClearLog();
    CHECK(query.Get<int32_t>("ResultCount") == 0);
}

/// Whether that was raised, once, with the number that every exception of the plugin has.
bool Raises(TestSession &session, const char *className, const char *message) {
    const auto raised = session.Host().TakeRaised();
    return raised.size() == 1 && raised.front().Is(className, message) && raised.front().errorNumber == 0;
}

RaisedException TakeOne(TestSession &session) {
    const auto raised = session.Host().TakeRaised();
    REQUIRE(raised.size() == 1);
    return raised.front();
}

} // namespace

TEST_CASE("Every method of a query object without a query raises \"NilObjectException\" and gives its neutral value") {
    TestSession session;
    Host &host = session.Host();
    const Object query = NilQuery(session);
    const Object strings = host.NewArray("string");
    const auto raises = [&] { return Raises(session, "NilObjectException", kMessage); };

    CHECK(query.Get<int32_t>("ResultCount") == 0);
    CHECK(raises());
    CHECK(query.GetValue("QueryString").IsNil());
    CHECK(raises());
    CHECK(query.GetValue("ValueListAttributes").IsNil());
    CHECK(raises());
    CHECK(query.GetValue("SortingAttributes").IsNil());
    CHECK(raises());
    CHECK(query.Get<bool>("IsGatheringComplete") == false);
    CHECK(raises());
    CHECK(query.GetValue("BatchingParameters").IsNil());
    CHECK(raises());
    for (const char *method : {"Stop", "DisableUpdates", "EnableUpdates"}) {
        CHECK(query.CallWith(method, {}).IsNil());
        CHECK(raises());
    }
    CHECK(query.CallWith("Execute", {0}) == Value(false));
    CHECK(raises());
    CHECK(query.CallWith("SetMaxCount", {1}).IsNil());
    CHECK(raises());
    CHECK(query.CallWith("SetSearchScope", {host.NewArray("folderitem"), strings}).IsNil());
    CHECK(raises());
    CHECK(query.CallWith("ResultAtIndex", {0}).IsNil());
    CHECK(raises());
    CHECK(query.CallWith("Results", {}).IsNil());
    CHECK(raises());
    CHECK(query.CallWith("ValuesOfAttribute", {"kMDItemFSName"}).IsNil());
    CHECK(raises());
    CHECK(query.CallWith("CountOfResultsWithAttributeValue", {"kMDItemFSName", host.Box("x")}) == Value(uint32_t{0}));
    CHECK(raises());
    CHECK(query.CallWith("AttributeValueOfResultAtIndex", {"kMDItemFSName", uint32_t{0}}).IsNil());
    CHECK(raises());
    CHECK(query.CallWith("IndexOfResult", {host.Create("MDItemQTX")}) == Value(0));
    CHECK(raises());
    CHECK(query.CallWith("SetSortOrder", {strings}) == Value(false));
    CHECK(raises());
    CHECK(query.CallWith("GetSortOptionFlagsForAttribute", {"kMDItemFSName"}) == Value(0));
    CHECK(raises());
    CHECK(query.CallWith("SetSortOptionFlagsForAttribute", {"kMDItemFSName", uint32_t{1}}) == Value(false));
    CHECK(raises());
}

TEST_CASE("Every method of an item object without an item raises \"NilObjectException\" and gives its neutral value") {
    TestSession session;
    Host &host = session.Host();
    const Object item = host.Create("MDItemQTX");
    const auto raises = [&] { return Raises(session, "NilObjectException", "MDItem Reference is nil"); };

    CHECK(item.CallWith("GetAttribute", {"kMDItemFSName"}).IsNil());
    CHECK(raises());
    CHECK(item.CallWith("GetAttributes", {host.NewArray("string")}).IsNil());
    CHECK(raises());
    CHECK(item.GetValue("AttributeNames").IsNil());
    CHECK(raises());
    CHECK(item.CallWith("AttributeString", {"kMDItemFSName"}).IsNil());
    CHECK(raises());
    CHECK(item.CallWith("AttributeBoolean", {"kMDItemFSName"}) == Value(false));
    CHECK(raises());
    CHECK(item.CallWith("AttributeDouble", {"kMDItemFSName"}) == Value(0.0));
    CHECK(raises());
    CHECK(item.CallWith("AttributeStringArray", {"kMDItemFSName"}).IsNil());
    CHECK(raises());
    CHECK(item.Get<int64_t>("FSSize") == 0);
    CHECK(raises());
}

TEST_CASE("A nil folder item raises \"NilObjectException\" with \"Folderitem is nil\"") {
    TestSession session;
    session.Host().Create("MDItemQTX").CallWith("Constructor", {nullptr});
    CHECK(Raises(session, "NilObjectException", "Folderitem is nil"));
}

TEST_CASE("A folder item that yields no URL raises \"NilObjectException\" with \"Folderitem is invalid\"") {
    TestSession session;
    session.Host().Create("MDItemQTX").CallWith("Constructor", {session.Host().NewFolderItem("")});
    CHECK(Raises(session, "NilObjectException", "Folderitem is invalid"));
}

TEST_CASE("An attribute of the wrong type raises \"RuntimeException\" with \"Wrong type used for getting attribute "
          "value.\"") {
    TestSession session;
    const Object item = session.Host().Create("MDItemQTX");
    item.CallWith("Constructor", {session.Host().NewFolderItem("/")});
    REQUIRE(session.TakeException() == "");
    CHECK(item.CallWith("AttributeBoolean", {"kMDItemFSName"}) == Value(false));
    CHECK(Raises(session, "RuntimeException", "Wrong type used for getting attribute value."));
}

TEST_CASE("The message is ASCII and ErrorNumber is 0 on hosts of every age") {
    for (const auto &age : kAges) {
        CAPTURE(age.value_or(-1));
        TestSession session(OfVersion(age));
        RaiseOnce(session);
        const RaisedException raised = TakeOne(session);
        CHECK(raised.Is("NilObjectException", kMessage));
        CHECK(raised.messageEncoding == kASCII);
        CHECK(raised.errorNumber == 0);
    }
}

TEST_CASE("Raising calls the host in a fixed order: the message, the object, its properties, the raise, the releases") {
    for (const auto &age : kAges) {
        CAPTURE(age.value_or(-1));
        TestSession session(OfVersion(age));
        RaiseOnce(session);
        CHECK(session.Host().CallNames(true) ==
              Calls{"REALBuildString(24)", "REALSetStringEncoding()", "PluginNewInstance(\"NilObjectException\")",
                    "REALSetPropValueString(\"Message\")", "REALSetPropValueInteger(\"ErrorNumber\", 0)",
                    "RuntimeRaiseException()", "REALUnlockObject()", "REALUnlockString()"});
    }
}

TEST_CASE("An unknown exception class raises a \"RuntimeException\" carrying the same message") {
    HostOptions options;
    options.missingClasses = {"NilObjectException"};
    TestSession session(options);
    RaiseOnce(session);
    CHECK(TakeOne(session).Is("RuntimeException", kMessage));
    const Calls calls = session.Host().CallNames(true);
    REQUIRE(calls.size() == 9);
    CHECK(calls[2] == "PluginNewInstance(\"NilObjectException\")");
    CHECK(calls[3] == "PluginNewInstance(\"RuntimeException\")");
}

TEST_CASE("Without a class to make an exception of, nothing is raised and the message is released") {
    HostOptions options;
    options.missingClasses = {"NilObjectException", "RuntimeException"};
    TestSession session(options);
    RaiseOnce(session);
    CHECK(session.Host().Raised().empty());
    CHECK(session.Host().CallNames() == Calls{"REALBuildString", "REALSetStringEncoding", "PluginNewInstance",
                                              "PluginNewInstance", "REALUnlockString"});
}

TEST_CASE("A host without \"PluginNewInstance\" raises nothing") {
    TestSession session(Without({"PluginNewInstance"}));
    RaiseOnce(session);
    CHECK(session.Host().Raised().empty());
    CHECK(session.Host().CallNames() == Calls{"REALBuildString", "REALSetStringEncoding", "REALUnlockString"});
}

TEST_CASE("A host that cannot build strings raises the exception with no \"Message\" set") {
    TestSession session(Without({"REALBuildString"}));
    RaiseOnce(session);
    const RaisedException raised = TakeOne(session);
    CHECK(raised.className == "NilObjectException");
    CHECK_FALSE(raised.message);
    CHECK(raised.errorNumber == 0);
    CHECK(session.Host().CallNames() ==
          Calls{"PluginNewInstance", "REALSetPropValueInteger", "RuntimeRaiseException", "REALUnlockObject"});
}

TEST_CASE("A host without \"REALSetPropValueString\" raises the exception with no \"Message\" set") {
    TestSession session(Without({"REALSetPropValueString"}));
    RaiseOnce(session);
    const RaisedException raised = TakeOne(session);
    CHECK(raised.className == "NilObjectException");
    CHECK_FALSE(raised.message);
    CHECK(raised.errorNumber == 0);
}

TEST_CASE("A host without \"REALSetPropValueInteger\" but with \"REALSetPropValueInt\" works through the second name") {
    TestSession session(Without({"REALSetPropValueInteger"}));
    RaiseOnce(session);
    CHECK(TakeOne(session).errorNumber == 0);
    CHECK(session.Host().CallCount("REALSetPropValueInt") == 1);
    CHECK(session.Host().RequestCount("REALSetPropValueInteger") == 1);
    CHECK(session.Host().RequestCount("REALSetPropValueInt") == 1);
    RaiseOnce(session);
    CHECK(TakeOne(session).errorNumber == 0);
    CHECK(session.Host().RequestCount("REALSetPropValueInteger") == 0);
}

TEST_CASE("A host without either integer setter raises the exception with no \"ErrorNumber\" set") {
    TestSession session(Without({"REALSetPropValueInteger", "REALSetPropValueInt"}));
    RaiseOnce(session);
    const RaisedException raised = TakeOne(session);
    CHECK(raised.Is("NilObjectException", kMessage));
    CHECK_FALSE(raised.errorNumber);
}

TEST_CASE("A host without \"RuntimeRaiseException\" raises nothing, and the exception object is released") {
    TestSession session(Without({"RuntimeRaiseException"}));
    RaiseOnce(session);
    CHECK(session.Host().Raised().empty());
    CHECK(session.Host().Alive("NilObjectException") == 0);
}

TEST_CASE("A host without \"REALUnlockObject\" raises the exception all the same") {
    TestSession session(Without({"REALUnlockObject"}));
    RaiseOnce(session);
    CHECK(TakeOne(session).Is("NilObjectException", kMessage));
    session.Host().ExpectLeft("NilObjectException", 1);
}

TEST_CASE("A host without \"REALUnlockString\" raises the exception all the same") {
    TestSession session(Without({"REALUnlockString"}));
    RaiseOnce(session);
    CHECK(TakeOne(session).Is("NilObjectException", kMessage));
    session.Host().ExpectLeft("string", 1);
}

TEST_CASE("An index beyond an array that shrinks while it is read raises \"OutOfBoundsException\" with the range of "
          "that moment") {
    // The upper bound is asked for once for the whole array and once for each element.
    TestSession session;
    Host &host = session.Host();
    const Object names = host.NewArray("string", {"kMDItemFSName", "kMDItemFSSize", "kMDItemKind", "kMDItemPath"});
    const Object query = NilQuery(session);
    SUBCASE("to one element") {
        host.Before("RuntimeUBound", 4, [&] { names.Resize(0); });
        query.CallWith("Constructor", {"kMDItemFSName == \"*\"", names});
        const auto raised = host.TakeRaised();
        REQUIRE(raised.size() == 2);
        CHECK(raised[0].Is("OutOfBoundsException", "Parameter index  is too big. Range is 0 to 0, but value is 2."));
        CHECK(raised[1].Is("OutOfBoundsException", "Parameter index  is too big. Range is 0 to 0, but value is 3."));
        CHECK(raised[0].errorNumber == 0);
        CHECK(query.Get<Object>("ValueListAttributes").Elements() ==
              std::vector<Value>{"kMDItemFSName", "kMDItemFSSize", nullptr, nullptr});
    }
    SUBCASE("to three elements") {
        host.Before("RuntimeUBound", 5, [&] { names.Resize(2); });
        query.CallWith("Constructor", {"kMDItemFSName == \"*\"", names});
        CHECK(Raises(session, "OutOfBoundsException", "Parameter index  is too big. Range is 0 to 2, but value is 3."));
    }
    SUBCASE("to nothing") {
        host.Before("RuntimeUBound", 5, [&] { names.Resize(-1); });
        query.CallWith("Constructor", {"kMDItemFSName == \"*\"", names});
        CHECK(session.TakeException() ==
              "OutOfBoundsException: Parameter index  is too big. Range is 0 to -1, but value is 3.");
    }
}
