// A plugin of the tests' own, small and regular: the class "Lamp" with every kind of member that the host knows how to
// reach, "Shade" without anything but stored properties, and one global method. It states the record layouts for
// itself.
#pragma once

#include "simulator/host/host.h"

#include <cstdint>

namespace tests {

/// What a Lamp keeps in its instance.
struct LampData {
    int32_t handle;
    void *tag;
    void *note;
    int32_t brightness;
};

/// The plugin's entry point. It announces `announcedVersion` and lays its records out for it.
void FakePluginMain(sim::host::Host::Resolver resolver);

/// The declaration version that the plugin announces; 13 unless a test says otherwise.
extern int32_t announcedVersion;
/// Whether the global method is registered through a module.
extern bool registersModule;

/// The data of a Lamp, as the plugin finds it.
LampData *DataOf(void *lamp);
/// The plugin's own class record of Lamp, and the event records that it declares by.
uint32_t *LampRecord();
uint32_t *LampEventRecords();
/// What identifies the event in that position to the host, as the plugin works it out.
uint32_t EventIdentifier(int position);

extern int32_t lampsConstructed;
extern int32_t lampsDestroyed;

/// Asks for the handler of an event and calls it, as a plugin that raises an event does. False when there is none.
bool RaiseTurnedOn(void *lamp);
bool RaiseDimmed(void *lamp, void *names, int32_t from, double to);

} // namespace tests
