// String arrays in both directions: from a host program into a query's value list, and out of it again.
#include "tests/convert/value_session.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"

#include <CoreServices/CoreServices.h>
#include <doctest/doctest.h>

#include <bit>

using sim::host::HostOptions;
using sim::host::Object;
using sim::host::Text;
using sim::host::Value;
using tests::AtEveryAge;
using tests::Fault;
using tests::ValueSession;

namespace {

constexpr const char *kEverything = "kMDItemFSName == \"*\"";

Object QueryWith(ValueSession &session, const Value &valueList) {
    Object query = session.Host().Create("MDQueryQTX");
    query.CallWith("Constructor", {kEverything, valueList});
    return query;
}

Object QueryWith(ValueSession &session, const std::vector<Value> &valueList) {
    return QueryWith(session, session.Host().NewArray("string", valueList));
}

/// The names as the system got them; nothing where it got no array.
std::optional<std::vector<std::string>> InCore(const Object &query) {
    const sim::macos::OwnCalls own;
    const auto names = sim::macos::CFRef<CFArrayRef>::Adopt(
        MDQueryCopyValueListAttributes(std::bit_cast<MDQueryRef>(query.Get<int32_t>("Handle"))));
    if (!names)
        return std::nullopt;
    std::vector<std::string> texts;
    for (CFIndex i = 0; i < CFArrayGetCount(names.Get()); i++)
        texts.push_back(sim::macos::Utf8Of(static_cast<CFStringRef>(CFArrayGetValueAtIndex(names.Get(), i))));
    return texts;
}

std::vector<Value> InHost(const Object &query) { return query.Get<Object>("ValueListAttributes").Elements(); }

using Texts = std::vector<std::string>;

} // namespace

TEST_CASE("A host string array becomes a CFArray of its strings in their order, on hosts of every age") {
    AtEveryAge([&](std::optional<double> age) {
        for (const bool shown : {false, true}) {
            HostOptions options{.version = age};
            options.directArrayStorage = shown;
            ValueSession session(options);
            const Object query = QueryWith(session, std::vector<Value>{"one", "zw\u00F6lf", "\U0001F600"});
            CHECK(InCore(query) == Texts{"one", "zw\u00F6lf", "\U0001F600"});
            CHECK(InHost(query) == std::vector<Value>{"one", "zw\u00F6lf", "\U0001F600"});
        }
    });
}

TEST_CASE("A nil array gives no CFArray") {
    ValueSession session;
    CHECK(InCore(QueryWith(session, Value(nullptr))).value_or(Texts{}).empty());
    CHECK(session.ItemWith(kCFBooleanTrue).CallWith("GetAttributes", {nullptr}).IsNil());
    CHECK(session.TakeException() == "");
}

TEST_CASE("A host string array with UBound -1 gives an empty CFArray") {
    AtEveryAge([&](std::optional<double> age) {
        ValueSession session(HostOptions{.version = age});
        CHECK(InCore(QueryWith(session, std::vector<Value>{})) == Texts{});
        // An empty array is asked for no element, and unlike no array at all it gives a dictionary.
        CHECK(session.ItemWith(kCFBooleanTrue)
                  .CallWith("GetAttributes", {session.Host().NewArray("string")})
                  .As<Object>()
                  .Entries()
                  .empty());
    });
}

TEST_CASE("A nil string in a host array becomes the empty CFString in its place") {
    AtEveryAge([&](std::optional<double> age) {
        for (const bool shown : {false, true}) {
            HostOptions options{.version = age};
            options.directArrayStorage = shown;
            ValueSession session(options);
            CHECK(InCore(QueryWith(session, std::vector<Value>{nullptr, "one", nullptr, "two"})) ==
                  Texts{"", "one", "", "two"});
        }
    });
}

TEST_CASE("An empty string in a host array stays one") {
    ValueSession session;
    CHECK(InCore(QueryWith(session, std::vector<Value>{"", "one"})) == Texts{"", "one"});
}

TEST_CASE("A string that does not convert becomes the empty CFString in its place") {
    HostOptions options;
    options.withheld = {"REALGetStringCFString"};
    ValueSession session(options);
    const Text malformed{"\xFF\xFE", sim::host::kUTF8};
    CHECK(InCore(QueryWith(session, std::vector<Value>{"one", malformed, "three"})) == Texts{"one", "", "three"});
    CHECK(session.TakeException() == "");
}

TEST_CASE("A string of which Core Foundation makes none becomes the empty CFString in its place") {
    HostOptions options;
    options.withheld = {"REALGetStringCFString"};
    ValueSession session(options);
    const Object names = session.Host().NewArray("string", {"one", "two", "three"});
    const Fault fault("CFStringCreateWithBytes", 3); // The first is the query's text.
    const Object query = QueryWith(session, Value(names));
    CHECK(fault.Failed() == 1);
    CHECK(InCore(query) == Texts{"one", "", "three"});
}

TEST_CASE("Where Core Foundation makes no array, there is none, and the method is neutral") {
    ValueSession session;
    const Object item = session.ItemWith(kCFBooleanTrue);
    const Object query = NewQuery(session);
    const Object names = session.Host().NewArray("string", {"one"});
    {
        const Fault fault("CFArrayCreateMutable");
        CHECK(item.CallWith("GetAttributes", {names}).IsNil());
        CHECK(query.CallWith("SetSortOrder", {names}) == Value(false));
        CHECK(fault.Failed() == 2);
    }
    CHECK(session.TakeException() == "");
}

TEST_CASE("A host without \"RuntimeUBound\" has one element taken of each array") {
    ValueSession session(HostOptions{.withheld = {"RuntimeUBound"}});
    CHECK(InCore(QueryWith(session, std::vector<Value>{"one", "two"})) == Texts{"one"});
}

TEST_CASE("An array that grows while it is read gives the elements that it had, and one that shrinks empty ones") {
    ValueSession session;
    const Object names = session.Host().NewArray("string", {"one", "two", "three"});
    SUBCASE("growing") {
        session.Host().Before("RuntimeUBound", 2, [&] { names.Append("four"); });
        CHECK(InCore(QueryWith(session, Value(names))) == Texts{"one", "two", "three"});
        CHECK(session.TakeException() == "");
    }
    SUBCASE("shrinking") {
        session.Host().Before("RuntimeUBound", 4, [&] { names.Resize(1); });
        CHECK(InCore(QueryWith(session, Value(names))) == Texts{"one", "two", ""});
        CHECK(session.TakeException() ==
              "OutOfBoundsException: Parameter index  is too big. Range is 0 to 1, but value is 2.");
    }
}

TEST_CASE("The strings of a CFArray are inserted at positions 0, 1, 2 and so on") {
    ValueSession session;
    const Object query = QueryWith(session, std::vector<Value>{"one", "two", "three"});
    session.Host().ClearLog();
    CHECK(InHost(query) == std::vector<Value>{"one", "two", "three"});
    std::vector<std::string> inserts;
    for (const std::string &call : session.Host().CallNames(true))
        if (call.starts_with("string array insert"))
            inserts.push_back(call);
    CHECK(inserts ==
          std::vector<std::string>{"string array insert(0)", "string array insert(1)", "string array insert(2)"});
}

TEST_CASE("An element whose conversion gives no string is inserted as a nil one and takes its place") {
    ValueSession session;
    const Object query = QueryWith(session, std::vector<Value>{"one", "", "three"});
    CHECK(InHost(query) == std::vector<Value>{"one", nullptr, "three"});
}

TEST_CASE("An empty CFArray gives an empty array and asks for no insert function") {
    ValueSession session;
    const Object query = QueryWith(session, std::vector<Value>{});
    session.Host().ClearLog();
    CHECK(InHost(query).empty());
    CHECK(session.Host().CallNames() == std::vector<std::string>{"RuntimeArrayCreateSingleDimBoundedArray"});
}

TEST_CASE("An array of many strings goes round unchanged") {
    ValueSession session;
    std::vector<Value> names;
    for (int i = 0; i < 2000; i++)
        names.emplace_back("attribute " + std::to_string(i) + std::string(static_cast<size_t>(i % 130), 'x'));
    CHECK(InHost(QueryWith(session, names)) == names);
}

TEST_CASE("The same string in an array twice stays there twice") {
    ValueSession session;
    CHECK(InCore(QueryWith(session, std::vector<Value>{"one", "one", "two", "one"})) ==
          Texts{"one", "one", "two", "one"});
}
