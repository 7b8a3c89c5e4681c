#include "simulator/session/session.h"
#include "tests/support/host_ages.h"
#include "tests/support/test_session.h"

#include <CoreServices/CoreServices.h>
#include <doctest/doctest.h>

#include <algorithm>

namespace {

using sim::host::Object;
using tests::AtAges;

sim::SessionOptions Options() {
    sim::SessionOptions options;
    options.plugin = tests::PluginPath();
    return options;
}

bool AnyLineHas(const std::vector<std::string> &lines, const std::string &text) {
    return std::ranges::any_of(lines, [&](const std::string &line) { return line.find(text) != std::string::npos; });
}

TEST_CASE("A session starts its plugin, which registers its classes") {
    sim::Session session(Options());
    REQUIRE(session.Host().Arrived().classes.size() == 3);
    CHECK(session.Host().Arrived().classes[0].name == "MDItemQTX");
    CHECK(session.Balance().empty());
}

TEST_CASE("A session that is not to start waits until it is told") {
    sim::SessionOptions options = Options();
    options.start = false;
    sim::Session session(std::move(options));
    CHECK(session.Host().Arrived().classes.empty());
    session.Start();
    CHECK(session.Host().Arrived().classes.size() == 3);
    CHECK(session.Balance().empty());
}

TEST_CASE("One session after the other starts afresh") {
    AtAges({2011.4, 2016.1}, [&](double version) {
        sim::SessionOptions options = Options();
        options.host.version = version;
        const sim::Session session(std::move(options));
        CHECK(session.Balance().empty());
    });
}

TEST_CASE("What is left over is told of anew when its retain count is another") {
    sim::Session session(Options());
    const CFTypeRef left = CFStringCreateWithCString(nullptr, "left", kCFStringEncodingUTF8);
    CHECK(AnyLineHas(session.NewlyOutOfBalance(), "still alive: CFString \"left\""));
    CHECK(session.NewlyOutOfBalance().empty());
    CHECK(AnyLineHas(session.Balance(), "still alive: CFString \"left\""));
    CFRetain(left);
    CHECK(AnyLineHas(session.NewlyOutOfBalance(), "\"left\", retain count 2"));
    CHECK(session.NewlyOutOfBalance().empty());
    CFRelease(left);
    CFRelease(left);
    CHECK(session.NewlyOutOfBalance().empty());
}

TEST_CASE("A query that is leaked shows in the balance, with its observers and where it was made") {
    sim::Session session(Options());
    Object query = session.Host().Create("MDQueryQTX");
    query.Call<void>("Constructor", "kMDItemFSName == \"*\"");
    const auto handle = query.Get<int32_t>("Handle");
    REQUIRE(handle != 0);
    CHECK(session.Balance().size() > 1); // both are alive, the object and the query

    query.Set("Handle", int32_t{0}); // now nobody will give the query back
    void *observer = query.Address();
    query.Release();
    const std::vector<std::string> lines = session.Balance();
    CHECK(AnyLineHas(lines, "MDQuery"));
    CHECK(AnyLineHas(lines, "rbMDQueryCreate2"));
    CHECK(AnyLineHas(lines, "observers: 3 are registered with the notification centre, and 0 were at the start"));

    CFNotificationCenterRemoveEveryObserver(CFNotificationCenterGetLocalCenter(), observer);
    CFRelease(reinterpret_cast<CFTypeRef>(static_cast<uintptr_t>(static_cast<uint32_t>(handle))));
    CHECK(session.Balance().empty());
}

TEST_CASE("The run loop says whether anything happened") {
    sim::Session session(Options());
    CHECK_FALSE(session.RunLoop(0));
    Object query = session.Host().Create("MDQueryQTX");
    query.Call<void>("Constructor", "kMDItemFSName == \"no such file\"");
    query.Call<void>("SetSearchScope", session.Host().NewArray("folderitem", {session.Host().NewFolderItem("/")}),
                     session.Host().NewArray("string"));
    query.Call<bool>("Execute", int32_t{0});
    CHECK(session.RunLoop(10));
    query.Call<void>("Stop");
}

} // namespace
