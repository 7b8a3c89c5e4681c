#include "tests/host/front_doors.h"

#include "simulator/macos/Carbon/search_window.h"

#include <doctest/doctest.h>

namespace tests {

using namespace sim::host;

std::optional<std::u16string> TextInCore(TestSession &session, const Value &text) {
    namespace searchwindow = sim::macos::searchwindow;
    searchwindow::Reset();
    CHECK(session.Host().Global<int32_t>("ShotlightQTX", text) == 0);
    REQUIRE(searchwindow::Calls().size() == 1);
    const auto shown = searchwindow::Calls().front();
    searchwindow::Reset();
    return shown.text;
}

Object NewQuery(TestSession &session, const Value &text, const std::vector<Value> &valueList,
                const std::vector<Value> &sorting) {
    Host &host = session.Host();
    Object query = host.Create("MDQueryQTX");
    query.Call("Constructor", text, host.NewArray("string", valueList), host.NewArray("string", sorting));
    return query;
}

Object NilQuery(TestSession &session) { return session.Host().Create("MDQueryQTX"); }

HostOptions OfVersion(std::optional<double> version) {
    HostOptions options;
    options.version = version;
    return options;
}

HostOptions Without(std::set<std::string, std::less<>> services, std::optional<double> version) {
    HostOptions options = OfVersion(version);
    options.withheld = std::move(services);
    return options;
}

} // namespace tests
