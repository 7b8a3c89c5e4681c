// The fixture of every test that looks at the plugin from outside: a host of a chosen age with a copy of the
// plugin under test, which is the native build or the library that ships. A test fails at its end when a reference of
// the host or of the system is out of balance, and says which.
#pragma once

#include "simulator/session/session.h"
#include "tests/support/plugin_path.h"

namespace tests {

class TestSession : public sim::Session {
public:
    explicit TestSession(sim::host::HostOptions host = {}, std::set<std::string> absentSymbols = {});
    /// A host of that version.
    explicit TestSession(double version);
    ~TestSession();

    /// The one exception that was raised since the last question, as "Class: message"; "" for none. More than one fails
    /// the test.
    std::string TakeException();
};

} // namespace tests
