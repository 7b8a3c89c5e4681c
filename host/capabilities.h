// What start-up learns about the host, and every question about its age that the plugin asks.
#pragma once

#include "host/handles.h"

/// Gives the address of the host service of that name, or null when the host has none.
using HostResolver = HostCode (*)(const char *name);

extern HostResolver gResolver;
/// The host's version as it reports it, for example 2013.04; 0.0 when it reports none.
extern double rbversion;
/// The declaration layout version, written into every record that the host gets.
extern int32_t CurrentREALControlVersion;

/// The layouts of declarations: that of hosts before 2012, whose records are shorter, and the newest. Those in between
/// differ from the newest only in the number.
constexpr int32_t kOldDeclarationLayout = 9;
constexpr int32_t kNewestDeclarationLayout = 13;

/// The newest layout that a host of this version understands.
constexpr int32_t HostLayoutOf(double version) {
    constexpr struct {
        double since;
        int32_t layout;
    } kLayouts[] = {{2013.04, kNewestDeclarationLayout}, {2013.03, 12}, {2013.0, 11}, {2012.0, 10}};
    for (const auto &row : kLayouts)
        if (version >= row.since)
            return row.layout;
    return kOldDeclarationLayout;
}

/// Asks the host for its version, and works out the layout from it.
void ReadHostVersion();

/// Such a host gets records that registration has shortened, and knows events by their shortened records.
inline bool HostReadsOldRecords() { return CurrentREALControlVersion == kOldDeclarationLayout; }
/// From 2012 on the host builds a string in the encoding that it is told.
inline bool HostBuildsWithEncoding() { return rbversion >= 2012.0; }
/// From 2012 on the host makes CFStrings of its strings. Older ones may, and are asked once less.
inline bool HostGivesCFStrings() { return rbversion >= 2012.0; }
/// Hosts before 2013 cannot convert UTF-32 themselves.
inline bool HostConvertsUTF32() { return rbversion >= 2013.0; }
/// From 2013 on, but for hosts that call themselves 3000 or later, global methods stand in modules.
inline bool HostTakesModules() { return rbversion >= 2013.0 && rbversion < 3000.0; }
/// From 2016 on, strings and arrays are used through services only; before, their memory layout is known.
inline bool HostHidesLayouts() { return rbversion >= 2016.0; }
