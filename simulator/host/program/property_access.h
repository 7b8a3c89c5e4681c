// A plugin's properties: stored ones, which the host reads and writes in the instance's data by itself, and computed
// ones, which it asks the plugin for.
#pragma once

#include "simulator/host/classes/instance.h"

namespace sim::host {

struct Property;

Value GetProperty(const Property &property, Instance &instance);
/// Throws ProgramError where the property cannot be set, or not to that.
void SetProperty(const Property &property, Instance &instance, const Value &value);

} // namespace sim::host
