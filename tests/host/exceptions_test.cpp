// Exceptions as a host program catches them: their classes, messages and numbers, the order of the host's services in
// raising one, and what a host without some of them sees.
#include <doctest/doctest.h>

#include "tests/host/front_doors.h"
#include "tests/support/host_ages.h"

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

/// A call of a method, or a question for a property, and what it gives when it raises.
struct NeutralCall {
    const char *member;
    std::vector<Value> arguments;
    Value neutral;
};

void CheckNeutral(TestSession &session, const Object &object, const char *message,
                  const std::vector<NeutralCall> &calls) {
    for (const NeutralCall &call : calls) {
        CAPTURE(call.member);
        CHECK((call.arguments.empty() ? object.GetValue(call.member) : object.CallWith(call.member, call.arguments)) ==
              call.neutral);
        CHECK(Raises(session, "NilObjectException", message));
    }
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
    const Value strings = host.NewArray("string");
    CheckNeutral(session, NilQuery(session), kMessage,
                 {{"ResultCount", {}, 0},
                  {"QueryString", {}, nullptr},
                  {"ValueListAttributes", {}, nullptr},
                  {"SortingAttributes", {}, nullptr},
                  {"IsGatheringComplete", {}, false},
                  {"BatchingParameters", {}, nullptr},
                  {"Stop", {}, nullptr},
                  {"DisableUpdates", {}, nullptr},
                  {"EnableUpdates", {}, nullptr},
                  {"Execute", {0}, false},
                  {"SetMaxCount", {1}, nullptr},
                  {"SetSearchScope", {host.NewArray("folderitem"), strings}, nullptr},
                  {"ResultAtIndex", {0}, nullptr},
                  {"Results", {}, nullptr},
                  {"ValuesOfAttribute", {"kMDItemFSName"}, nullptr},
                  {"CountOfResultsWithAttributeValue", {"kMDItemFSName", host.Box("x")}, uint32_t{0}},
                  {"AttributeValueOfResultAtIndex", {"kMDItemFSName", uint32_t{0}}, nullptr},
                  {"IndexOfResult", {host.Create("MDItemQTX")}, 0},
                  {"SetSortOrder", {strings}, false},
                  {"GetSortOptionFlagsForAttribute", {"kMDItemFSName"}, 0},
                  {"SetSortOptionFlagsForAttribute", {"kMDItemFSName", uint32_t{1}}, false}});
}

TEST_CASE("Every method of an item object without an item raises \"NilObjectException\" and gives its neutral value") {
    TestSession session;
    Host &host = session.Host();
    CheckNeutral(session, host.Create("MDItemQTX"), "MDItem Reference is nil",
                 {{"GetAttribute", {"kMDItemFSName"}, nullptr},
                  {"GetAttributes", {host.NewArray("string")}, nullptr},
                  {"AttributeNames", {}, nullptr},
                  {"AttributeString", {"kMDItemFSName"}, nullptr},
                  {"AttributeBoolean", {"kMDItemFSName"}, false},
                  {"AttributeDouble", {"kMDItemFSName"}, 0.0},
                  {"AttributeStringArray", {"kMDItemFSName"}, nullptr},
                  {"FSSize", {}, int64_t{0}}});
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
    AtEveryAge([&](std::optional<double> age) {
        TestSession session(HostOptions{.version = age});
        RaiseOnce(session);
        const RaisedException raised = TakeOne(session);
        CHECK(raised.Is("NilObjectException", kMessage));
        CHECK(raised.messageEncoding == kASCII);
        CHECK(raised.errorNumber == 0);
    });
}

TEST_CASE("Raising calls the host in a fixed order: the message, the object, its properties, the raise, the releases") {
    AtEveryAge([&](std::optional<double> age) {
        TestSession session(HostOptions{.version = age});
        RaiseOnce(session);
        CHECK(session.Host().CallNames(true) ==
              Calls{"REALBuildString(24)", "REALSetStringEncoding()", "PluginNewInstance(\"NilObjectException\")",
                    "REALSetPropValueString(\"Message\")", "REALSetPropValueInteger(\"ErrorNumber\", 0)",
                    "RuntimeRaiseException()", "REALUnlockObject()", "REALUnlockString()"});
    });
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
