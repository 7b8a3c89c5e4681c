// One value of each world that holds every kind there is, nested. A run over it passes through every conversion.
#pragma once

#include "tests/convert/value_session.h"
#include "tests/support/temporary_folder.h"

namespace tests {

/// Every kind of Core Foundation value, in an array and in dictionaries.
CoreValue WholeCoreValue(const TemporaryFolder &folder);

/// Every kind of host value, in arrays and dictionaries. Of wrapper classes those that the host has.
sim::host::Value WholeHostValue(sim::host::Host &host, const TemporaryFolder &folder);

/// Hosts that differ in how values are reached: their element tables shown or not, strings handed over as CFStrings or
/// as bytes.
struct HostKind {
    const char *name;
    double version;
    bool directArrayStorage;
    bool offersCFStrings;
};
inline constexpr HostKind kHostKinds[] = {
    {"an old host that shows its elements", 2011.4, true, false},
    {"a host without direct elements", 2013.04, false, true},
    {"a host of 2016 that hands over CFStrings", 2016.0, false, true},
    {"a host of 2016 that hands over bytes", 2016.0, false, false},
};
/// A host of that kind with all wrapper classes.
sim::host::HostOptions OptionsOf(const HostKind &kind);

} // namespace tests
