#include "tests/support/test_session.h"

#include "tests/support/plugin_watch.h"

#include <doctest/doctest.h>

namespace tests {

namespace {

sim::SessionOptions Options(sim::host::HostOptions host, std::set<std::string> absentSymbols) {
    sim::SessionOptions options;
    options.plugin = PluginPath();
    options.watch = &PluginWatch::Instance();
    options.host = std::move(host);
    options.absentSymbols = std::move(absentSymbols);
    return options;
}

sim::host::HostOptions OfVersion(double version) {
    sim::host::HostOptions options;
    options.version = version;
    return options;
}

} // namespace

TestSession::TestSession(sim::host::HostOptions host, std::set<std::string> absentSymbols)
    : Session(Options(std::move(host), std::move(absentSymbols))) {}

TestSession::TestSession(double version) : TestSession(OfVersion(version)) {}

TestSession::~TestSession() {
    for (const std::string &line : Balance())
        ADD_FAIL_CHECK_AT(__FILE__, __LINE__, "out of balance: " << line);
}

std::string TestSession::TakeException() {
    const auto raised = Host().TakeRaised();
    CHECK(raised.size() <= 1);
    return raised.empty() ? "" : raised.front().className + ": " + raised.front().message.value_or("(no message)");
}

} // namespace tests
