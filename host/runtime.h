// What start-up learns about the host, and the questions about its age that the rest of the plugin asks.
#pragma once

#include "host/handles.h"

/// Gives the address of the host service of that name, or null when the host has none.
using HostResolver = HostCode (*)(const char *name);

extern HostResolver gResolver;
/// The host's version as it reports it, for example 2013.04; 0.0 when it reports none.
extern double rbversion;
/// The declaration layout version, 9 to 13, written into every record that the host gets.
extern int32_t CurrentREALControlVersion;

/// The layout of hosts before 2012: records are shorter, and registration converts them.
constexpr int32_t kOldDeclarationLayout = 9;

/// From 2012 on the host builds strings of any encoding, and is asked twice for a string's CFString.
inline bool HostSpeaksCFStrings() { return rbversion >= 2012.0; }
/// Hosts before 2013 cannot convert UTF-32 themselves.
inline bool HostConvertsUTF32() { return rbversion >= 2013.0; }
/// From 2016 on, strings and arrays are used through services only; before, their memory layout is known.
inline bool HostHidesLayouts() { return rbversion >= 2016.0; }
