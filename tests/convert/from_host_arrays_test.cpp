// Host arrays on their way to Core Foundation, on hosts of every age, whole and while they shrink.
#include "tests/convert/array_hosts.h"
#include "tests/convert/value_session.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <string>

using sim::host::HostOptions;
using sim::host::Object;
using sim::host::Value;
using tests::ArrayHost;
using tests::CoreValue;
using tests::kArrayHostNames;
using tests::ValueSession;

namespace {

/// Runs a check on hosts of every age.
template <class Check> void OnEveryHost(Check check) {
    for (int which = 0; which < 3; which++) {
        SUBCASE(kArrayHostNames[which]) {
            ValueSession session(ArrayHost(which));
            check(session);
        }
    }
}

} // namespace

TEST_CASE("A string array becomes a CFArray of CFStrings") {
    OnEveryHost([](ValueSession &session) {
        CHECK(session.TextInCore(session.Host().NewArray("string", {"a", "ö", "🎈"})) == "[\"a\", \"ö\", \"🎈\"]");
    });
}

TEST_CASE("A string whose conversion gives nothing leaves the empty CFString in its place") {
    OnEveryHost([](ValueSession &session) {
        CHECK(session.TextInCore(session.Host().NewArray("string", {"a", nullptr, "", "b"})) ==
              "[\"a\", \"\", \"\", \"b\"]");
    });
}

TEST_CASE("A date array becomes a CFArray of CFDates; an unreadable or nil date is left out") {
    OnEveryHost([](ValueSession &session) {
        auto &host = session.Host();
        const Object unreadable = host.NewDate({2014});
        unreadable.MakeDateUnreadable();
        CHECK(session.TextInCore(host.NewArray("date", {host.NewDate({2001, 1, 1, 0, 0, 1}), unreadable, nullptr,
                                                        host.NewDate({2001, 1, 1, 0, 1, 0})})) == "[Date 1, Date 60]");
    });
}

TEST_CASE("A boolean array becomes a CFArray of true and false") {
    OnEveryHost([](ValueSession &session) {
        CHECK(session.TextInCore(session.Host().NewArray("boolean", {true, false, true})) == "[true, false, true]");
    });
}

TEST_CASE("A variant array becomes a CFArray of its converted elements; those without a form are left out") {
    OnEveryHost([](ValueSession &session) {
        auto &host = session.Host();
        const Object array = host.NewArray(
            "variant", {"a", nullptr, 7, host.NewArray("variant", {true, host.NewArray("string", {"deep"})}),
                        host.Create("RuntimeException"), 2.5});
        CHECK(session.TextInCore(array) == "[\"a\", SInt32 7, [true, [\"deep\"]], Float64 2.5]");
    });
}

TEST_CASE("An array of objects of one class is read as a variant array is") {
    OnEveryHost([](ValueSession &session) {
        auto &host = session.Host();
        CHECK(session.TextInCore(host.NewArray("dictionary", {host.NewDictionary({{"a", 1}}), nullptr})) ==
              "[{\"a\": SInt32 1}]");
    });
}

TEST_CASE("An array with the upper bound -1 becomes an empty CFArray, of whatever type") {
    OnEveryHost([](ValueSession &session) {
        for (const std::string type :
             {"string", "integer", "int64", "single", "double", "boolean", "variant", "date", "folderitem"}) {
            CAPTURE(type);
            CHECK(session.TextInCore(session.Host().NewArray(type)) == "[]");
        }
    });
}

TEST_CASE("Deliberate: numeric arrays keep their length and number type, but not their numbers") {
    struct Row {
        const char *type;
        Value element;
        const char *prefix;
        const char *getter;
    };
    const Row rows[] = {{"integer", 77, "SInt32 ", "integer array get"},
                        {"int64", int64_t{77}, "SInt64 ", "int64 array get"},
                        {"single", 77.5F, "Float32 ", "single array get"},
                        {"double", 77.5, "Float64 ", "double array get"}};
    OnEveryHost([&](ValueSession &session) {
        for (const Row &row : rows) {
            CAPTURE(row.prefix);
            session.Host().ClearLog();
            const CoreValue list =
                session.FromHost(session.Host().NewArray(row.type, {row.element, row.element, row.element}));
            const auto values = sim::macos::ValuesOf(static_cast<CFArrayRef>(list.Get()));
            REQUIRE(values.size() == 3);
            // The first number is made from zeros, the others from references that are gone: never the host's 77.
            CHECK(tests::TextOf(values[0]).ends_with(" 0"));
            for (size_t i = 1; i < 3; i++) {
                CHECK(tests::TextOf(values[i]).starts_with(row.prefix));
                CHECK(tests::TextOf(values[i]).find(" 77") == std::string::npos);
            }
            // The getter is called for each element where elements are not shown, and not at all where they are.
            CHECK(session.Host().CallCount(row.getter) ==
                  (session.Host().Options().version < 2014 && session.Host().Options().directArrayStorage ? 0 : 3));
        }
    });
}

TEST_CASE("Deliberate: each number of a numeric array but the first is the reference of the one before it") {
    ValueSession session;
    // In the second list as in the first.
    for (int again = 0; again < 2; again++) {
        const CoreValue list = session.FromHost(session.Host().NewArray("integer", {1, 2, 3}));
        const auto values = sim::macos::ValuesOf(static_cast<CFArrayRef>(list.Get()));
        REQUIRE(values.size() == 3);
        for (size_t i = 1; i < 3; i++) {
            CAPTURE(i);
            const auto before = static_cast<int32_t>(reinterpret_cast<uintptr_t>(values[i - 1]));
            CHECK(tests::TextOf(values[i]) == "SInt32 " + std::to_string(before));
        }
    }
}

TEST_CASE("Each element takes and gives back its reference") {
    OnEveryHost([](ValueSession &session) {
        const Object date = session.Host().NewDate({2014});
        const Object array = session.Host().NewArray("date", {date, date});
        const int32_t before = date.References();
        session.FromHost(array);
        CHECK(date.References() == before);
    });
}

TEST_CASE("The elements of each array that shows them are read in place, which takes no element getter") {
    ValueSession session(HostOptions{.version = 2013.04,
                                     .withheld = {"PluginStringArrayGetProc", "PluginBooleanArrayGetProc",
                                                  "PluginObjectArrayGetProc", "RuntimeArrayDirectGetGetProc"}});
    auto &host = session.Host();
    CHECK(session.TextInCore(host.NewArray("string", {"a", "b"})) == "[\"a\", \"b\"]");
    CHECK(session.TextInCore(host.NewArray("string", {"c"})) == "[\"c\"]");
    CHECK(session.TextInCore(host.NewArray("boolean", {true, false})) == "[true, false]");
    CHECK(session.TextInCore(host.NewArray("boolean", {false, true})) == "[false, true]");
    CHECK(session.TextInCore(host.NewArray("variant", {7})) == "[SInt32 7]");
}

TEST_CASE("The element getter is asked for at each element, by its own name or the older one") {
    struct Row {
        const char *type;
        Value element;
        const char *factory;
        const char *expected;
    };
    const auto check = [](double version, bool older) {
        for (const Row &row : {Row{"string", "a", "PluginStringArrayGetProc", "[\"a\", \"a\"]"},
                               Row{"boolean", true, "PluginBooleanArrayGetProc", "[true, true]"},
                               Row{"variant", 7, "PluginObjectArrayGetProc", "[SInt32 7, SInt32 7]"}}) {
            HostOptions options{.version = version, .directArrayStorage = false};
            if (older)
                options.withheld = {row.factory};
            ValueSession session(options);
            CHECK(session.TextInCore(session.Host().NewArray(row.type, {row.element, row.element})) == row.expected);
            CHECK(session.Host().CallCount(older ? "RuntimeArrayDirectGetGetProc" : row.factory) == 2);
        }
    };
    check(2013.04, false);
    check(2013.04, true);
    check(2016.0, false);
    check(2016.0, true);
}

TEST_CASE("Elements that the host gives no getter for are null or zero") {
    const auto check = [](ValueSession &session) {
        auto &host = session.Host();
        CHECK(session.TextInCore(host.NewArray("string", {"a"})) == "[\"\"]");
        CHECK(session.TextInCore(host.NewArray("boolean", {true})) == "[false]");
        CHECK(session.TextInCore(host.NewArray("variant", {7})) == "[]");
        CHECK(session.TextInCore(host.NewArray("date", {host.NewDate({2014})})) == "[]");
        CHECK(session.TextInCore(host.NewArray("integer", {7})) == "[SInt32 0]");
    };
    SUBCASE("the host has no getter services") {
        ValueSession session(HostOptions{.version = 2016.0,
                                         .withheld = {"PluginStringArrayGetProc", "PluginBooleanArrayGetProc",
                                                      "PluginObjectArrayGetProc", "PluginIntegerArrayGetProc",
                                                      "RuntimeArrayDirectGetGetProc"}});
        check(session);
    }
    SUBCASE("the host gives no getter for the array") {
        ValueSession session(2016.0);
        for (const char *name : {"PluginStringArrayGetProc", "PluginBooleanArrayGetProc", "PluginObjectArrayGetProc",
                                 "PluginIntegerArrayGetProc"})
            session.Host().ReturnNothing(name);
        check(session);
    }
}

TEST_CASE("Where the upper bound cannot be told it counts as 0") {
    for (int which = 0; which < 3; which++) {
        SUBCASE(kArrayHostNames[which]) {
            HostOptions options = ArrayHost(which);
            options.withheld = {"RuntimeUBound"};
            ValueSession session(options);
            CHECK(session.TextInCore(session.Host().NewArray("string", {"a", "b"})) == "[\"a\"]");
            CHECK(session.TakeException() == "");
        }
    }
}

TEST_CASE("An array that shrinks while it is read raises for each element that is gone, and the rest goes on") {
    struct Row {
        const char *type;
        std::vector<Value> elements;
        const char *expected;
    };
    const Row rows[] = {{"string", {"a", "b", "c"}, "[\"a\", \"\", \"\"]"},
                        {"boolean", {true, true, true}, "[true, false, false]"},
                        {"variant", {1, 2, 3}, "[SInt32 1]"}};
    OnEveryHost([&](ValueSession &session) {
        for (const Row &row : rows) {
            CAPTURE(row.expected);
            const Object array = session.Host().NewArray(row.type, row.elements);
            // The first question is for the whole length, then there is one for each element.
            session.Host().Before("RuntimeUBound", 3, [array] { array.Resize(0); });
            CHECK(session.TextInCore(array) == row.expected);
            session.Host().Mend("RuntimeUBound");
            const auto raised = session.Host().TakeRaised();
            REQUIRE(raised.size() == 2);
            CHECK(
                raised[0].Is("OutOfBoundsException", "Parameter index  is too big. Range is 0 to 0, but value is 1."));
            CHECK(
                raised[1].Is("OutOfBoundsException", "Parameter index  is too big. Range is 0 to 0, but value is 2."));
        }
    });
}

TEST_CASE("A numeric array that shrinks keeps the length that it had") {
    OnEveryHost([](ValueSession &session) {
        const Object array = session.Host().NewArray("double", {1.5, 2.5, 3.5});
        session.Host().Before("RuntimeUBound", 3, [array] { array.Resize(-1); });
        const CoreValue list = session.FromHost(array);
        session.Host().Mend("RuntimeUBound");
        CHECK(sim::macos::ValuesOf(static_cast<CFArrayRef>(list.Get())).size() == 3);
        const auto raised = session.Host().TakeRaised();
        REQUIRE(raised.size() == 2);
        CHECK(raised[1].Is("OutOfBoundsException", "Parameter index  is too big. Range is 0 to -1, but value is 2."));
    });
}

TEST_CASE("Elements to which the host adds no references are not read in place: the element functions are asked") {
    ValueSession session(HostOptions{.withheld = {"REALLockObject", "REALLockString"}});
    auto &host = session.Host();
    CHECK(session.TextInCore(host.NewArray("string", {"a"})) == "[\"a\"]");
    CHECK(host.CallCount("string array get") == 1);
    CHECK(session.TextInCore(host.NewArray("variant", {host.Box(7)})) == "[SInt32 7]");
    CHECK(host.CallCount("object array get") == 1);
}

TEST_CASE("Elements of a host that shows them are read in place: no element function is asked") {
    ValueSession session;
    auto &host = session.Host();
    CHECK(session.TextInCore(host.NewArray("string", {"a"})) == "[\"a\"]");
    CHECK(host.CallCount("string array get") == 0);
    CHECK(session.TextInCore(host.NewArray("variant", {host.Box(7)})) == "[SInt32 7]");
    CHECK(host.CallCount("object array get") == 0);
}
