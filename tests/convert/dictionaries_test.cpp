// Dictionaries in both directions: every pair, nested ones, and the methods that are looked up once per dictionary.
#include "tests/convert/dictionary_methods.h"
#include "tests/convert/value_session.h"
#include "tests/support/call_log.h"

#include <doctest/doctest.h>

using sim::host::HostOptions;
using sim::host::Object;
using sim::host::Value;
using tests::CallLines;
using tests::CallLog;
using tests::CoreArray;
using tests::CoreDictionary;
using tests::CoreInteger;
using tests::CoreNull;
using tests::CoreText;
using tests::CoreValue;
using tests::kGetter;
using tests::kKeyGetter;
using tests::kSetter;
using tests::ValueSession;

namespace {

/// The methods that were loaded, in order.
std::vector<std::string> Loaded(ValueSession &session) {
    std::vector<std::string> names;
    for (const auto &request : session.Host().Requests())
        if (request.name == kSetter || request.name == kGetter || request.name == kKeyGetter)
            names.push_back(request.name);
    return names;
}

std::vector<std::string> Groups(int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; i++)
        names.insert(names.end(), {kSetter, kGetter, kKeyGetter});
    return names;
}

/// In the order in which the system gives the pairs out.
std::vector<CoreValue> KeysInOrder(const CoreValue &dictionary) {
    std::vector<CoreValue> keys;
    const auto note = [](const void *key, const void *, void *context) {
        static_cast<std::vector<CoreValue> *>(context)->push_back(CoreValue::Retain(key));
    };
    CFDictionaryApplyFunction(static_cast<CFDictionaryRef>(dictionary.Get()), note, &keys);
    return keys;
}

CoreValue Inner() { return CoreDictionary({{CoreText("x"), CoreInteger(1)}, {CoreText("y"), CoreInteger(2)}}); }

} // namespace

TEST_CASE("A CFDictionary becomes a host Dictionary with every pair, keys and values converted") {
    ValueSession session;
    CHECK(session.TextInHost(CoreDictionary({{CoreText("a"), CoreInteger(1)},
                                             {CoreInteger(2), CoreArray({CoreText("b")})},
                                             {tests::CoreTruth(true), tests::CoreDate(0)}})) ==
          "{\"a\": Integer 1, Integer 2: [\"b\"], true: Date 2001-01-01 00:00:00}");
}

TEST_CASE("An empty CFDictionary becomes an empty Dictionary, never nil") {
    ValueSession session;
    CHECK(session.TextInHost(CoreDictionary({})) == "{}");
    CHECK(Loaded(session).empty());
}

TEST_CASE("In an application without the class Dictionary a CFDictionary gives nil") {
    ValueSession session(HostOptions{.missingClasses = {"Dictionary"}});
    CallLog log(session);
    CHECK(session.ToHost(Inner()).IsNil());
    CHECK(log.Take({"CFDictionaryApplyFunction"}) == CallLines{});
}

TEST_CASE("Dictionaries within, for which the host makes none, do not cost the outer one its methods") {
    ValueSession session;
    const CoreValue outer = CoreDictionary({{CoreText("a"), Inner()}, {CoreText("b"), Inner()}});
    Object item = session.ItemWith(outer.Get());
    session.Host().ReturnNothing("PluginNewInstance", 2);
    CHECK(tests::TextOf(item.Call("GetAttribute", "value")) == "{\"a\": nil, \"b\": nil}");
    CHECK(Loaded(session) == Groups(1));
}

TEST_CASE("A pair whose value is CFNull is stored with nil") {
    ValueSession session;
    CHECK(session.TextInHost(CoreDictionary({{CoreText("a"), CoreNull()}, {CoreText("b"), CoreInteger(1)}})) ==
          "{\"a\": nil, \"b\": Integer 1}");
}

TEST_CASE("A pair whose value has no host form is stored with nil") {
    ValueSession session;
    CHECK(session.TextInHost(CoreDictionary({{CoreText("a"), tests::CoreInstance("CGImage")}})) == "{\"a\": nil}");
}

TEST_CASE("A pair whose key is null is not stored, and nothing of it is converted") {
    ValueSession session;
    // Without callbacks a dictionary may hold null.
    const auto dictionary =
        sim::macos::CFRef<CFMutableDictionaryRef>::Adopt(CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr));
    const CoreValue text = CoreText("value"), key = CoreText("key");
    CFDictionarySetValue(dictionary.Get(), nullptr, text.Get());
    CFDictionarySetValue(dictionary.Get(), key.Get(), nullptr);
    CHECK(session.TextInHost(CoreValue::Retain(dictionary.Get())) == "{\"key\": nil}");
    CHECK(session.Host().CallCount("StringToVariant") == 1);
}

TEST_CASE("Of two keys that are equal in the host the later pair wins") {
    ValueSession session;
    const CoreValue dictionary = CoreDictionary({{CoreInteger(100), CoreText("first")},
                                                 {tests::CoreDouble(100.5), CoreText("other")},
                                                 {tests::CoreNumber<int64_t>(kCFNumberSInt64Type, 101), CoreText("x")},
                                                 {tests::CoreDate(0.25), CoreText("one")},
                                                 {tests::CoreDate(0.75), CoreText("two")}});
    std::string later;
    for (const CoreValue &key : KeysInOrder(dictionary))
        if (CFGetTypeID(key.Get()) == CFDateGetTypeID())
            later = CFEqual(key.Get(), tests::CoreDate(0.25).Get()) ? "one" : "two";
    CHECK(session.TextInHost(CoreValue::Retain(dictionary.Get())) ==
          "{Date 2001-01-01 00:00:00: \"" + later +
              "\", Double 100.5: \"other\", Int64 101: \"x\", Integer 100: \"first\"}");
}

TEST_CASE("The value is converted before the key") {
    ValueSession session;
    session.Host().ClearLog();
    session.ToHost(CoreDictionary({{tests::CoreTruth(true), CoreInteger(700)}}));
    const std::vector<std::string> names = session.Host().CallNames();
    const auto at = [&](const std::string &name) {
        return std::find(names.begin(), names.end(), name) - names.begin();
    };
    CHECK(at("IntegerToVariant") < at("BooleanToVariant"));
    CHECK(at("BooleanToVariant") < at(kSetter));
}

TEST_CASE("The key is unlocked before the value") {
    // Not stored, both die when they are unlocked.
    ValueSession session(HostOptions{.withheld = {kSetter}});
    bool keyIsGone = false, valueIsThere = false;
    session.Host().Before("REALUnlockObject", 2, [&] {
        keyIsGone = session.Host().Alive("variant") == 0;
        valueIsThere = session.Host().Alive("Date") == 1;
    });
    session.ToHost(CoreDictionary({{tests::CoreTruth(true), tests::CoreDate(0)}}));
    CHECK(keyIsGone);
    CHECK(valueIsThere);
}

TEST_CASE("The three methods are loaded together, once for each dictionary that has a pair") {
    ValueSession session;
    session.ToHost(Inner());
    CHECK(Loaded(session) == Groups(1));
    session.ToHost(Inner());
    CHECK(Loaded(session) == Groups(2));
}

TEST_CASE("A dictionary within a dictionary: every outer pair that follows is stored in the outer one") {
    ValueSession session;
    const CoreValue outer = CoreDictionary({{CoreText("a"), CoreInteger(1)},
                                            {CoreText("inner"), Inner()},
                                            {CoreText("b"), CoreInteger(2)},
                                            {Inner(), CoreInteger(3)},
                                            {CoreText("c"), CoreArray({Inner()})}});
    CHECK(session.TextInHost(CoreValue::Retain(outer.Get())) ==
          "{\"a\": Integer 1, \"b\": Integer 2, \"c\": [{\"x\": Integer 1, \"y\": Integer 2}], "
          "\"inner\": {\"x\": Integer 1, \"y\": Integer 2}, {\"x\": Integer 1, \"y\": Integer 2}: Integer 3}");
    // The outer methods are loaded after each of the three inner dictionaries, and at first, if a plain pair comes
    // first.
    const CoreValue first = CoreValue::Retain(KeysInOrder(outer).front().Get());
    const bool startsPlain = CFEqual(first.Get(), CFSTR("a")) || CFEqual(first.Get(), CFSTR("b"));
    CHECK(Loaded(session) == Groups((startsPlain ? 1 : 0) + 2 * 3));
}

TEST_CASE("Two dictionaries at the same address, one after the other, each get their own methods") {
    HostOptions options;
    options.reuseAddresses = true;
    ValueSession session(options);
    const void *first = session.ToHost(Inner()).As<Object>().Address();
    const Object second = session.ToHost(CoreDictionary({{CoreText("z"), CoreInteger(3)}})).As<Object>();
    CHECK(second.Address() == first);
    CHECK(tests::TextOf(second) == "{\"z\": Integer 3}");
    CHECK(Loaded(session) == Groups(2));
}

TEST_CASE("The same dictionary read and written again is looked up again") {
    ValueSession session;
    const Object dictionary = session.ToHost(Inner()).As<Object>();
    session.FromHost(dictionary);
    session.FromHost(dictionary);
    CHECK(Loaded(session) == Groups(3));
}

TEST_CASE("A Dictionary at the address of one whose filling an exception ended gets its own methods") {
    struct Thrown {};
    HostOptions options;
    options.reuseAddresses = true;
    ValueSession session(options);
    session.Host().Throw(
        kSetter, [] { throw Thrown(); }, 1, 1);
    CHECK_THROWS_AS(session.ToHost(Inner()), Thrown);
    CHECK(session.TextInHost(Inner()) == "{\"x\": Integer 1, \"y\": Integer 2}");
    CHECK(Loaded(session) == Groups(2));
}

TEST_CASE("A dictionary whose setter cannot be found is returned empty, and is not asked for again at each pair") {
    SUBCASE("the method") {
        ValueSession session(HostOptions{.withheld = {kSetter}});
        CHECK(session.TextInHost(Inner()) == "{}");
        CHECK(Loaded(session) == Groups(1));
    }
    SUBCASE("the service that loads methods") {
        ValueSession session(HostOptions{.withheld = {"REALLoadObjectMethod"}});
        CHECK(session.TextInHost(Inner()) == "{}");
    }
}

TEST_CASE("Methods that are loaded and never called may be missing") {
    ValueSession session(HostOptions{.withheld = {kGetter, kKeyGetter}});
    CHECK(session.TextInHost(Inner()) == "{\"x\": Integer 1, \"y\": Integer 2}");
}

TEST_CASE("GetAttributes fills a dictionary in the same way, nested values included") {
    ValueSession session;
    Object item = session.ItemWith(Inner().Get());
    const auto names = session.Host().NewArray("string", {"one", "nothing", "two"});
    CHECK(tests::TextOf(item.Call("GetAttributes", names)) ==
          "{\"one\": {\"x\": Integer 1, \"y\": Integer 2}, \"two\": {\"x\": Integer 1, \"y\": Integer 2}}");
    CHECK(Loaded(session) == Groups(4));
}
