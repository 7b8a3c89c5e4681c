// The fixture of the value tests: a session in which any Core Foundation value reaches the plugin as an attribute of an
// item, and any host value as what a query is asked to count. What was converted comes out at the other side.
#pragma once

#include "tests/convert/value_text.h"
#include "tests/support/test_session.h"

namespace tests {

// The ways in and out, of any session.

/// A live item that answers with that value for every attribute, and for "nothing" with nothing.
sim::host::Object ItemWith(sim::Session &session, CFTypeRef value);
/// A query that has not been executed.
sim::host::Object NewQuery(sim::Session &session);
/// What "GetAttribute" of an item gives whose attribute has that value, borrowed; null for an item without it.
sim::host::Value ToHost(sim::Session &session, CFTypeRef value);
/// The value that reached the framework when "CountOfResultsWithAttributeValue" was called with this one; null when the
/// framework was not asked.
CoreValue FromHost(sim::Session &session, const sim::host::Value &value);

class ValueSession : public TestSession {
public:
    explicit ValueSession(sim::host::HostOptions host = {}, std::set<std::string> absentSymbols = {})
        : TestSession(std::move(host), std::move(absentSymbols)) {}
    explicit ValueSession(double version) : TestSession(version) {}

    sim::host::Object ItemWith(CFTypeRef value) { return tests::ItemWith(*this, value); }
    sim::host::Value ToHost(CFTypeRef value) { return tests::ToHost(*this, value); }
    sim::host::Value ToHost(const CoreValue &value) { return ToHost(value.Get()); }
    CoreValue FromHost(const sim::host::Value &value) { return tests::FromHost(*this, value); }

    // The same in words.
    std::string TextInHost(const CoreValue &value) { return TextOf(ToHost(value)); }
    std::string TextInCore(const sim::host::Value &value) { return TextOf(FromHost(value)); }
};

/// Options of a host in which these wrapper classes are loaded.
sim::host::HostOptions WithCompanions(const std::vector<std::string> &names, sim::host::HostOptions options = {});

/// Every wrapper class of either direction.
const std::vector<std::string> &WrapperClasses();

/// The wrapped reference, borrowed.
CFTypeRef HeldBy(const sim::host::Object &wrapper);

} // namespace tests
