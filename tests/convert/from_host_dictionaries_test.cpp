// Host dictionaries on their way to Core Foundation.
#include "tests/convert/dictionary_methods.h"
#include "tests/convert/value_session.h"
#include "tests/support/fault.h"

#include <doctest/doctest.h>

#include <algorithm>

using sim::host::HostOptions;
using sim::host::Object;
using sim::host::Value;
using tests::Fault;
using tests::kGetter;
using tests::kKeyGetter;
using tests::kSetter;
using tests::ValueSession;

namespace {

int32_t LoadedGroups(const ValueSession &session) {
    const auto &requests = const_cast<ValueSession &>(session).Host().Requests();
    return static_cast<int32_t>(
        std::count_if(requests.begin(), requests.end(), [](const auto &request) { return request.name == kSetter; }));
}

} // namespace

TEST_CASE("A Dictionary becomes a CFDictionary with every pair, keys and values converted") {
    ValueSession session;
    auto &host = session.Host();
    CHECK(session.TextInCore(host.NewDictionary({{"a", 1}, {2, host.NewArray("string", {"b"})}, {true, 1.5}})) ==
          "{\"a\": SInt32 1, SInt32 2: [\"b\"], true: Float64 1.5}");
    CHECK(session.TextInCore(host.NewDictionary()) == "{}");
}

TEST_CASE("A Dictionary's nil value is stored as CFNull") {
    ValueSession session;
    CHECK(session.TextInCore(session.Host().NewDictionary({{"a", nullptr}, {"b", 1}})) ==
          "{\"a\": null, \"b\": SInt32 1}");
}

TEST_CASE("A key or value without a Core Foundation form is stored as CFNull") {
    ValueSession session;
    auto &host = session.Host();
    const Object unknown = host.Create("RuntimeException");
    CHECK(session.TextInCore(host.NewDictionary({{"a", unknown}, {unknown, "b"}})) == "{\"a\": null, null: \"b\"}");
}

TEST_CASE("An entry whose key is nil is left out") {
    ValueSession session;
    CHECK(session.TextInCore(session.Host().NewDictionary({{nullptr, "x"}, {"b", 1}})) == "{\"b\": SInt32 1}");
}

TEST_CASE("Keys that become equal in Core Foundation meet in one entry, with the value of the last") {
    ValueSession session;
    auto &host = session.Host();
    const Object one = host.Create("RuntimeException"), two = host.Create("RuntimeException");
    CHECK(session.TextInCore(host.NewDictionary({{one, "x"}, {two, "y"}})) == "{null: \"y\"}");
}

TEST_CASE("Dictionaries within dictionaries are read whole, and the outer one goes on with its own methods") {
    ValueSession session;
    auto &host = session.Host();
    const Object inner = host.NewDictionary({{"x", 1}, {"y", 2}});
    const Object outer = host.NewDictionary({{"a", inner}, {"b", host.NewArray("variant", {inner})}, {"c", 3}});
    CHECK(session.TextInCore(outer) ==
          "{\"a\": {\"x\": SInt32 1, \"y\": SInt32 2}, \"b\": [{\"x\": SInt32 1, \"y\": SInt32 2}], \"c\": SInt32 3}");
    CHECK(LoadedGroups(session) == 5);
}

TEST_CASE("One dictionary of many entries is looked up once") {
    ValueSession session;
    std::vector<std::pair<Value, Value>> entries;
    for (int32_t i = 0; i < 100; i++)
        entries.emplace_back(i, i + 1);
    const auto converted = session.FromHost(session.Host().NewDictionary(entries));
    CHECK(CFDictionaryGetCount(static_cast<CFDictionaryRef>(converted.Get())) == 100);
    CHECK(LoadedGroups(session) == 1);
}

TEST_CASE("A dictionary that cannot say how many entries it has counts as empty") {
    ValueSession session(HostOptions{.withheld = {"REALGetPropValueInteger", "REALGetPropValueInt"}});
    CHECK(session.TextInCore(session.Host().NewDictionary({{"a", 1}})) == "{}");
    CHECK(LoadedGroups(session) == 0);
}

TEST_CASE("The count is read through the older name where the host lacks the newer") {
    ValueSession session(HostOptions{.withheld = {"REALGetPropValueInteger"}});
    CHECK(session.TextInCore(session.Host().NewDictionary({{"a", 1}})) == "{\"a\": SInt32 1}");
}

TEST_CASE("Without a key getter no entry is stored, for as long as the host has none") {
    ValueSession session(HostOptions{.withheld = {kKeyGetter}});
    const Object dictionary = session.Host().NewDictionary({{"a", 1}});
    CHECK(session.TextInCore(dictionary) == "{}");
    session.Host().TakeRaised(); // the host's own, for a key that it does not have
    session.Host().Offer(kKeyGetter);
    CHECK(session.TextInCore(dictionary) == "{\"a\": SInt32 1}");
}

TEST_CASE("Without a value getter every entry is stored with CFNull, for as long as the host has none") {
    ValueSession session(HostOptions{.withheld = {kGetter}});
    const Object dictionary = session.Host().NewDictionary({{"a", 1}, {"b", 2}});
    CHECK(session.TextInCore(dictionary) == "{\"a\": null, \"b\": null}");
    session.Host().Offer(kGetter);
    CHECK(session.TextInCore(dictionary) == "{\"a\": SInt32 1, \"b\": SInt32 2}");
}

TEST_CASE("Without a setter, which is loaded and not called, every entry is stored") {
    ValueSession session(HostOptions{.withheld = {kSetter}});
    CHECK(session.TextInCore(session.Host().NewDictionary({{"a", 1}})) == "{\"a\": SInt32 1}");
}

TEST_CASE("A dictionary that grows shorter while it is read gives what is left") {
    ValueSession session;
    const Object dictionary = session.Host().NewDictionary({{"a", 1}, {"b", 2}});
    session.Host().ReturnNothing(kKeyGetter, 2, 2);
    session.Host().ReturnNothing(kGetter, 2, 2);
    CHECK(session.TextInCore(dictionary) == "{\"a\": SInt32 1}");
}

TEST_CASE("A dictionary that is read while the key of another is asked for leaves that one methods of its own") {
    ValueSession session;
    auto &host = session.Host();
    const Object outer = host.NewDictionary({{"a", 1}});
    host.Before(kKeyGetter, 1, [&] {
        host.Mend(kKeyGetter);
        host.Withhold(kGetter);
        CHECK(session.TextInCore(host.NewDictionary({{"b", 2}})) == "{\"b\": null}");
        host.Offer(kGetter);
    });
    CHECK(session.TextInCore(outer) == "{\"a\": SInt32 1}");
    CHECK(LoadedGroups(session) == 3);
}

TEST_CASE("A dictionary within, for which none can be made, does not cost the outer one its methods") {
    ValueSession session;
    auto &host = session.Host();
    const Object outer = host.NewDictionary({{"a", host.NewDictionary({{"x", 1}})}, {"b", 2}});
    const Fault fault("CFDictionaryCreateMutable", 2);
    CHECK(session.TextInCore(outer) == "{\"a\": null, \"b\": SInt32 2}");
    CHECK(LoadedGroups(session) == 1);
}

TEST_CASE("A dictionary whose reading an exception ended is looked up again when it is read again") {
    struct Thrown {};
    ValueSession session;
    const Object dictionary = session.Host().NewDictionary({{"a", 1}});
    session.Host().Throw(
        kGetter, [] { throw Thrown(); }, 1, 1);
    CHECK_THROWS_AS(tests::NewQuery(session).Call("CountOfResultsWithAttributeValue", "value", dictionary), Thrown);
    CHECK(session.TextInCore(dictionary) == "{\"a\": SInt32 1}");
    CHECK(LoadedGroups(session) == 2);
}
