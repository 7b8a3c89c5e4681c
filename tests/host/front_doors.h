// The methods through which a host program gets at the bridge: strings and string arrays go in with a query's
// constructor and come out through its getters, and the search window shows any string as the plugin read it.
#pragma once

#include "tests/support/test_session.h"

#include <optional>
#include <string>

namespace tests {

/// Calls a method of a new session's plugin that reads one string, and tells which text reached the system; nothing
/// when no string did.
std::optional<std::u16string> TextInCore(TestSession &session, const sim::host::Value &text);

/// A query that has not been executed. Its getters give back the text, the value list and the sorting attributes.
sim::host::Object NewQuery(TestSession &session, const sim::host::Value &text = "kMDItemFSName == \"*\"",
                           const std::vector<sim::host::Value> &valueList = {},
                           const std::vector<sim::host::Value> &sorting = {});

/// A query object without a query.
sim::host::Object NilQuery(TestSession &session);

/// A host of that version, or of none.
sim::host::HostOptions OfVersion(std::optional<double> version);
sim::host::HostOptions Without(std::set<std::string, std::less<>> services, std::optional<double> version = 2013.04);

} // namespace tests
