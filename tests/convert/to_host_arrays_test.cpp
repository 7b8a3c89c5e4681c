// Core Foundation arrays on their way to the host, and how elements are stored on hosts of every age.
#include "simulator/host/ground/stop.h"
#include "tests/convert/array_hosts.h"
#include "tests/convert/value_session.h"

#include <doctest/doctest.h>

#include <algorithm>

using sim::host::HostOptions;
using sim::host::Object;
using tests::ArrayHost;
using tests::CoreArray;
using tests::CoreInteger;
using tests::CoreText;
using tests::CoreValue;
using tests::kArrayHostNames;
using tests::ValueSession;

namespace {

CoreValue Mixed() {
    return CoreArray({CoreText("a"), tests::CoreNull(), CoreInteger(7), CoreArray({tests::CoreTruth(true)})});
}

} // namespace

TEST_CASE("A CFArray becomes an array of its converted elements, nil ones keeping their places") {
    for (int which = 0; which < 3; which++) {
        SUBCASE(kArrayHostNames[which]) {
            ValueSession session(ArrayHost(which));
            CHECK(session.TextInHost(Mixed()) == "[\"a\", nil, Integer 7, [true]]");
            CHECK(session.TakeException() == "");
        }
    }
}

TEST_CASE("An empty CFArray becomes an array with the upper bound -1") {
    ValueSession session;
    const Object array = session.ToHost(CoreArray({})).As<Object>();
    CHECK(array.UpperBound() == -1);
    CHECK(array.TypeCode() == 4105);
}

TEST_CASE("The host array is made in one piece for objects, with the upper bound of the last element") {
    ValueSession session;
    session.Host().ClearLog();
    session.ToHost(CoreArray({CoreInteger(1), CoreInteger(2), CoreInteger(3)}));
    const auto calls = session.Host().CallNames(true);
    CHECK(std::count(calls.begin(), calls.end(), "RuntimeArrayCreateSingleDimBoundedArray(4, 2)") == 1);
}

TEST_CASE("Each element has exactly one reference, the array's") {
    for (int which = 0; which < 3; which++) {
        SUBCASE(kArrayHostNames[which]) {
            ValueSession session(ArrayHost(which));
            const Object array = session.ToHost(CoreArray({tests::CoreDate(0), tests::CoreDate(1)})).As<Object>();
            for (int32_t i = 0; i < 2; i++) {
                const Object element = array.At(i).As<Object>();
                CHECK(element.References() == 2); // the array's and this test's
            }
            CHECK(session.Host().Alive("Date") == 2);
        }
    }
}

TEST_CASE("A set function is asked for at each element, by its own name or the older one") {
    SUBCASE("PluginObjectArraySetProc") {
        ValueSession session(2016.0);
        session.ToHost(CoreArray({CoreInteger(1), CoreInteger(2)}));
        CHECK(session.Host().CallCount("PluginObjectArraySetProc") == 2);
        CHECK(session.Host().CallCount("object array set") == 2);
    }
    SUBCASE("RuntimeArrayDirectGetSetProc") {
        ValueSession session(HostOptions{.version = 2016.0, .withheld = {"PluginObjectArraySetProc"}});
        CHECK(session.TextInHost(CoreArray({CoreInteger(1), CoreInteger(2)})) == "[Integer 1, Integer 2]");
        CHECK(session.Host().CallCount("RuntimeArrayDirectGetSetProc") == 2);
    }
    SUBCASE("neither: the elements stay nil") {
        ValueSession session(
            HostOptions{.version = 2016.0, .withheld = {"PluginObjectArraySetProc", "RuntimeArrayDirectGetSetProc"}});
        CHECK(session.TextInHost(CoreArray({CoreInteger(1), CoreInteger(2)})) == "[nil, nil]");
    }
    SUBCASE("the host gives no function for the array") {
        ValueSession session(2016.0);
        session.Host().ReturnNothing("PluginObjectArraySetProc");
        CHECK(session.TextInHost(CoreArray({CoreInteger(1)})) == "[nil]");
    }
}

TEST_CASE("A host that reports no version counts as old: elements are stored in its table") {
    HostOptions options;
    options.version = std::nullopt;
    ValueSession session(options);
    CHECK(session.TextInHost(CoreArray({CoreInteger(1)})) == "[Integer 1]");
    CHECK(session.Host().CallCount("object array set") == 0);
}

TEST_CASE("Where no array can be made a CFArray gives nil") {
    ValueSession session(HostOptions{.withheld = {"RuntimeArrayCreateSingleDimBoundedArray"}});
    CHECK(session.ToHost(CoreArray({CoreInteger(1)})).IsNil());
    CHECK(session.ToHost(CoreArray({})).IsNil());
}

TEST_CASE("Where the host makes no array for a CFArray it is not asked for another") {
    ValueSession session;
    session.Host().ReturnNothing("RuntimeArrayCreateSingleDimBoundedArray", 1, 1);
    CHECK(session.ToHost(CoreArray({CoreInteger(1)})).IsNil());
    CHECK(session.Host().CallCount("RuntimeArrayCreateSingleDimBoundedArray") == 1);
}

TEST_CASE("An element beyond the array's present upper bound raises and is not stored; the rest goes on") {
    for (int which = 0; which < 3; which++) {
        SUBCASE(kArrayHostNames[which]) {
            ValueSession session(ArrayHost(which));
            const CoreValue three = CoreArray({CoreInteger(1), CoreInteger(2), CoreInteger(3)});
            // Without an answer the upper bound is 0.
            session.Host().ReturnNothing("RuntimeUBound");
            const Object array = session.ToHost(three).As<Object>();
            session.Host().Mend("RuntimeUBound");
            CHECK(tests::TextOf(array) == "[Integer 1, nil, nil]");
            const auto raised = session.Host().TakeRaised();
            REQUIRE(raised.size() == 2);
            CHECK(
                raised[0].Is("OutOfBoundsException", "Parameter index  is too big. Range is 0 to 0, but value is 1."));
            CHECK(
                raised[1].Is("OutOfBoundsException", "Parameter index  is too big. Range is 0 to 0, but value is 2."));
        }
    }
}

TEST_CASE(
    "Where the host adds no references, nothing is stored in place: the set function is asked, whatever its age") {
    for (int which = 0; which < 3; which++) {
        HostOptions options = ArrayHost(which);
        options.withheld = {"REALLockObject"};
        ValueSession session(options);
        CHECK(session.TextInHost(CoreArray({CoreInteger(1), CoreInteger(2)})) == "[Integer 1, Integer 2]");
        CHECK(session.Host().CallCount("object array set") == 2);
    }
}

TEST_CASE("The set function gets the array, the element and the index, and a host that takes the index first refuses") {
    static std::string reason;
    const auto previous = sim::host::SetStopHandler([](const std::string &why) {
        reason = why;
        throw std::string(why);
    });
    for (const auto order : {sim::host::SetterOrder::kValueThenIndex, sim::host::SetterOrder::kIndexThenValue}) {
        reason.clear();
        ValueSession session(HostOptions{.version = 2016.0, .setterOrder = order});
        std::string seen;
        try {
            seen = session.TextInHost(CoreArray({CoreInteger(1), CoreInteger(2)}));
        } catch (const std::string &) {
        }
        if (order == sim::host::SetterOrder::kValueThenIndex) {
            CHECK(seen == "[Integer 1, Integer 2]");
            CHECK(reason == "");
        } else {
            CHECK(reason == "the set function of an array takes the index, then the element");
        }
    }
    sim::host::SetStopHandler(previous);
}

TEST_CASE("Where the host cannot tell upper bounds a list gives nil and nothing is raised, unless it is empty") {
    for (int which = 0; which < 3; which++) {
        HostOptions options = ArrayHost(which);
        options.withheld = {"RuntimeUBound"};
        ValueSession session(options);
        CHECK(session.ToHost(CoreArray({CoreInteger(1)})).IsNil());
        CHECK(session.ToHost(Mixed()).IsNil());
        CHECK(session.ToHost(CoreArray({tests::CoreNull()})).IsNil());
        CHECK(session.Host().CallCount("RuntimeArrayCreateSingleDimBoundedArray") == 0);
        CHECK_FALSE(session.ToHost(CoreArray({})).IsNil());
        CHECK(session.TakeException() == "");
    }
}

TEST_CASE("An element without a host form leaves its slot nil, on hosts of every age") {
    for (int which = 0; which < 3; which++) {
        SUBCASE(kArrayHostNames[which]) {
            ValueSession session(ArrayHost(which));
            CHECK(session.TextInHost(CoreArray({tests::CoreInstance("CGImage"), tests::CoreNull(), CoreText("")})) ==
                  "[nil, nil, nil]");
        }
    }
}

TEST_CASE("Ten thousand elements keep their order") {
    ValueSession session;
    std::vector<CoreValue> kept;
    std::vector<CFTypeRef> borrowed;
    for (int32_t i = 0; i < 10000; i++) {
        kept.push_back(CoreInteger(i));
        borrowed.push_back(kept.back().Get());
    }
    const auto numbers = session.ToHost(CoreArray(borrowed)).As<Object>().As<int32_t>();
    REQUIRE(numbers.size() == 10000);
    for (int32_t i = 0; i < 10000; i++)
        CHECK(numbers[static_cast<size_t>(i)] == i);
}
