// C++ exceptions that a host throws while a string is built for a host program: none of them comes out of the plugin;
// each becomes the host exception of its kind.
#include <doctest/doctest.h>

#include "tests/host/front_doors.h"
#include "tests/support/host_ages.h"

#include <new>
#include <stdexcept>
#include <typeinfo>

using namespace sim::host;
using namespace tests;

namespace {

struct NoDescription {};

struct OwnDescription : std::exception {
    const char *what() const noexcept override { return "described by the host itself"; }
};

struct OwnCast : std::bad_cast {
    const char *what() const noexcept override { return "a cast of the host's own"; }
};

struct DerivedRangeError : std::range_error {
    using std::range_error::range_error;
};

struct Kind {
    std::string name;
    std::function<void()> thrower;
    std::string raised;
};

template <class Exception> Kind Throwing(const char *name, Exception exception, const std::string &raised) {
    return {name, [exception] { throw exception; }, raised};
}

const char *const kUnnamed = "RuntimeException: Sorry, but there was an unnamed C++ Exception.";

const std::vector<Kind> &Kinds() {
    static const std::vector<Kind> kinds = {
        Throwing("range error", std::range_error("a range"), "OutOfBoundsException: a range"),
        Throwing("out-of-range error", std::out_of_range("out of range"), "OutOfBoundsException: out of range"),
        Throwing("overflow error", std::overflow_error("too much"), "OutOfBoundsException: too much"),
        Throwing("underflow error", std::underflow_error("too little"), "OutOfBoundsException: too little"),
        Throwing("bad cast", std::bad_cast(), std::string("IllegalCastException: ") + std::bad_cast().what()),
        Throwing("one derived from a bad cast", OwnCast(), "IllegalCastException: a cast of the host's own"),
        Throwing("runtime error", std::runtime_error("no luck"), "RuntimeException: no luck"),
        Throwing("logic error", std::logic_error("no sense"), "RuntimeException: no sense"),
        Throwing("bad allocation", std::bad_alloc(), std::string("RuntimeException: ") + std::bad_alloc().what()),
        Throwing("one of the host's own", OwnDescription(), "RuntimeException: described by the host itself"),
        Throwing("one derived from a range error", DerivedRangeError("deeper"), "OutOfBoundsException: deeper"),
        Throwing("one without a description", NoDescription(), kUnnamed),
        Throwing("a number", 42, kUnnamed),
        Throwing("a text", std::string("text"), kUnnamed),
    };
    return kinds;
}

} // namespace

TEST_CASE("A C++ exception of each kind out of \"REALBuildString\" becomes its host exception, and the text is nil") {
    AtEveryAge([&](std::optional<double> age) {
        for (const Kind &kind : Kinds()) {
            CAPTURE(kind.name);
            TestSession session(OfVersion(age));
            const Object query = NewQuery(session, "kMDItemFSName == \"x\"");
            session.Host().Throw("REALBuildString", kind.thrower, 1, 1);
            session.Host().ClearLog();
            CHECK(query.GetValue("QueryString").IsNil());
            CHECK(session.TakeException() == kind.raised);
            // The class is there, so no other is asked for.
            CHECK(session.Host().CallCount("PluginNewInstance") == 1);
            // What was wrong once is not wrong for ever.
            CHECK(query.Get<std::string>("QueryString") == "kMDItemFSName == \"x\"");
            CHECK(session.TakeException() == "");
        }
    });
}

TEST_CASE("A C++ exception of each kind out of \"REALSetStringEncoding\" becomes its host exception, and the built "
          "string is released") {
    for (const Kind &kind : Kinds()) {
        CAPTURE(kind.name);
        TestSession session;
        const Object query = NewQuery(session);
        session.Host().Throw("REALSetStringEncoding", kind.thrower, 1, 1);
        CHECK(query.GetValue("QueryString").IsNil());
        CHECK(session.TakeException() == kind.raised);
    }
}

TEST_CASE("The number of an exception that came of a C++ exception is 0 and its message is ASCII") {
    TestSession session;
    const Object query = NewQuery(session);
    session.Host().Throw(
        "REALBuildString", [] { throw std::range_error("a range"); }, 1, 1);
    query.GetValue("QueryString");
    const auto raised = session.Host().TakeRaised();
    REQUIRE(raised.size() == 1);
    CHECK(raised.front().errorNumber == 0);
    CHECK(raised.front().messageEncoding == kASCII);
}

TEST_CASE("A description-less library exception inside string building surfaces as \"RuntimeException\" with \"Sorry, "
          "but there was an unnamed C++ Exception.\"") {
    TestSession session;
    const Object query = NewQuery(session);
    session.Host().Throw(
        "REALBuildString", [] { throw NoDescription(); }, 1, 1);
    CHECK(query.GetValue("QueryString").IsNil());
    CHECK(session.TakeException() == "RuntimeException: Sorry, but there was an unnamed C++ Exception.");
}

TEST_CASE("A host that throws whenever a string is built gets that exception and the one out of its message, both "
          "without a message, and no endless chain") {
    for (const Kind &kind : Kinds()) {
        CAPTURE(kind.name);
        TestSession session;
        const Object query = NewQuery(session);
        session.Host().Throw("REALBuildString", kind.thrower);
        CHECK(query.GetValue("QueryString").IsNil());
        const auto raised = session.Host().TakeRaised();
        REQUIRE(raised.size() == 2);
        for (const RaisedException &exception : raised) {
            CHECK(exception.className == kind.raised.substr(0, kind.raised.find(':')));
            CHECK_FALSE(exception.message);
            CHECK(exception.errorNumber == 0);
        }
        CHECK(session.Host().CallCount("REALBuildString") == 2);
    }
}

TEST_CASE("An exception caught while another one's message is built is raised as well, first and without a message") {
    TestSession session;
    const Object query = NewQuery(session);
    int builds = 0;
    session.Host().Throw("REALBuildString", [&builds] {
        if (++builds == 1)
            throw std::range_error("the first");
        throw std::bad_cast();
    });
    CHECK(query.GetValue("QueryString").IsNil());
    const auto raised = session.Host().TakeRaised();
    REQUIRE(raised.size() == 2);
    CHECK(raised[0].className == "IllegalCastException");
    CHECK_FALSE(raised[0].message);
    CHECK(raised[1].className == "OutOfBoundsException");
    CHECK_FALSE(raised[1].message);
}

TEST_CASE("A host that throws while an exception's properties are set gets the exception without them") {
    for (const bool fromCaught : {false, true})
        for (const char *service : {"REALSetPropValueString", "REALSetPropValueInteger"}) {
            CAPTURE(fromCaught);
            CAPTURE(service);
            TestSession session;
            const Object query = fromCaught ? NewQuery(session) : NilQuery(session);
            session.Host().ThrowFrom(service, NoDescription());
            if (fromCaught)
                session.Host().Throw(
                    "REALBuildString", [] { throw std::range_error("a range"); }, 1, 1);
            CHECK(query.GetValue("QueryString").IsNil());
            const auto raised = session.Host().TakeRaised();
            REQUIRE(raised.size() == 1);
            CHECK(raised.front().className == (fromCaught ? "OutOfBoundsException" : "NilObjectException"));
            const bool hasMessage = std::string_view(service) == "REALSetPropValueInteger";
            CHECK(raised.front().message.has_value() == hasMessage);
            CHECK(raised.front().errorNumber.has_value() == !hasMessage);
        }
}

TEST_CASE("A host that throws again while a string is given up because it threw before gets the first exception only") {
    TestSession session;
    const Object query = NewQuery(session);
    session.Host().Throw(
        "REALSetStringEncoding", [] { throw std::range_error("the first"); }, 1, 1);
    session.Host().Throw(
        "REALUnlockString", [] { throw std::bad_cast(); }, 1, 1);
    session.Host().ExpectLeft("string", 1);
    CHECK(query.GetValue("QueryString").IsNil());
    CHECK(session.TakeException() == "OutOfBoundsException: the first");
}

TEST_CASE("A C++ exception while another exception's message is built takes the message away, not the exception") {
    TestSession session;
    const Object query = NilQuery(session);
    session.Host().Throw(
        "REALBuildString", [] { throw std::out_of_range("the message"); }, 1, 1);
    CHECK(query.Get<int32_t>("ResultCount") == 0);
    const auto raised = session.Host().TakeRaised();
    REQUIRE(raised.size() == 2);
    CHECK(raised[0].Is("OutOfBoundsException", "the message"));
    CHECK(raised[1].className == "NilObjectException");
    CHECK_FALSE(raised[1].message);
}

TEST_CASE("A C++ exception in the middle of an array of strings leaves that string empty and goes on with the next") {
    TestSession session;
    const Object query = NewQuery(session, "kMDItemFSName == \"*\"", {"kMDItemFSName", "kMDItemKind", "kMDItemPath"});
    session.Host().Throw(
        "REALBuildString", [] { throw std::bad_cast(); }, 2, 2);
    CHECK(query.Get<Object>("ValueListAttributes").Elements() ==
          std::vector<Value>{"kMDItemFSName", nullptr, "kMDItemPath"});
    CHECK(session.TakeException() == std::string("IllegalCastException: ") + std::bad_cast().what());
}

TEST_CASE("A C++ exception while the name of a type is built is caught as well") {
    TestSession session;
    session.Host().Throw(
        "REALBuildString", [] { throw std::underflow_error("no name"); }, 1, 1);
    CHECK(session.Host().SharedWith("MDItemQTX", "AttributeType", {"kMDItemFSName"}).IsNil());
    CHECK(session.TakeException() == "OutOfBoundsException: no name");
    CHECK(session.Host().Shared<std::string>("MDItemQTX", "AttributeType", "kMDItemFSName") == "String");
}
