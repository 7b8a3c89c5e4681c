// The global method that opens the system's search window: what reaches the system, and what comes back.
#include <doctest/doctest.h>

#include "simulator/macos/Carbon/search_window.h"
#include "tests/support/fault.h"
#include "tests/support/host_ages.h"
#include "tests/support/test_session.h"

using sim::host::HostOptions;
using sim::host::Text;
using sim::host::Value;
using tests::AtAges;
using tests::AtEveryAge;
using tests::Fault;
using tests::TestSession;

namespace searchwindow = sim::macos::searchwindow;

namespace {

/// The method arrives in a module from 2013.0 to below 3000.0, and directly otherwise.

struct Window {
    Window() { searchwindow::Reset(); }
    ~Window() { searchwindow::Reset(); }
    Window(const Window &) = delete;
    Window &operator=(const Window &) = delete;

    /// The one call since the last question.
    searchwindow::Call TakeCall() const {
        REQUIRE(searchwindow::Calls().size() == 1);
        auto call = searchwindow::Calls().front();
        searchwindow::Reset();
        return call;
    }
};

} // namespace

TEST_CASE("ShotlightQTX opens the search window with the text, without options, on either way of registration") {
    const Window window;
    AtEveryAge([&](std::optional<double> version) {
        TestSession session(HostOptions{.version = version});
        CHECK(session.Host().Global<int32_t>("ShotlightQTX", "Zo\xC3\xAB \xF0\x9F\x98\x80") == 0);
        const auto call = window.TakeCall();
        CHECK(call.text == std::u16string(u"Zo\u00EB \U0001F600"));
        CHECK(call.options == 0);
        CHECK(session.TakeException() == "");
    });
}

TEST_CASE("ShotlightQTX gives the system's status unchanged and raises nothing") {
    const Window window;
    AtAges({2012.5, 2013.04}, [&](double version) {
        TestSession session(version);
        for (const OSStatus status : {-50, -108, 1, INT32_MAX, INT32_MIN, 0}) {
            searchwindow::SetStatus(status);
            CHECK(session.Host().Global<int32_t>("ShotlightQTX", "words") == status);
        }
        CHECK(searchwindow::Calls().size() == 6);
        CHECK(session.TakeException() == "");
        searchwindow::Reset();
    });
}

TEST_CASE("A nil or malformed search text reaches the system as nil, and the status comes back all the same") {
    const Window window;
    AtEveryAge([&](std::optional<double> version) {
        TestSession session(HostOptions{.version = version});
        for (const Value &text : {Value(nullptr), Value(Text{"\xC0\xAF", sim::host::kUTF8})}) {
            searchwindow::SetStatus(-50);
            CHECK(session.Host().Global<int32_t>("ShotlightQTX", text) == -50);
            const auto call = window.TakeCall();
            CHECK_FALSE(call.text.has_value());
            CHECK(call.options == 0);
        }
        CHECK(session.TakeException() == "");
    });
}

TEST_CASE("Where no CFString can be made the window is opened with nil") {
    const Window window;
    TestSession session(HostOptions{.offersCFStrings = false});
    {
        const Fault fault("CFStringCreateWithBytes");
        CHECK(session.Host().Global<int32_t>("ShotlightQTX", "words") == 0);
    }
    CHECK_FALSE(window.TakeCall().text.has_value());
}

TEST_CASE("An empty search text opens the window with an empty text") {
    const Window window;
    TestSession session;
    session.Host().Global<int32_t>("ShotlightQTX", "");
    CHECK(window.TakeCall().text == std::u16string());
}

TEST_CASE("Each call of ShotlightQTX opens the window once more") {
    const Window window;
    TestSession session;
    for (const char *text : {"one", "two", "two"})
        session.Host().Global<int32_t>("ShotlightQTX", text);
    REQUIRE(searchwindow::Calls().size() == 3);
    CHECK(searchwindow::Calls()[0].text == std::u16string(u"one"));
    CHECK(searchwindow::Calls()[2].text == std::u16string(u"two"));
}
