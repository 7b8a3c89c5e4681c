// Calling the plugin as a compiled host program does: arguments become 32-bit words on the stack in the order of their
// declaration, the result comes back in the registers that its declared type prescribes. The caller keeps its
// references during the call; a counted result belongs to it afterwards.
#pragma once

#include "simulator/host/classes/classes.h"
#include "simulator/host/entities/value.h"

namespace sim::host {

/// Calls a declared function. `self` is the instance, or null for shared and global methods. `owner` is the class or
/// module, for messages. Missing arguments are filled with their presets.
Value CallMethod(const std::string &owner, const Method &method, Entity *self, std::vector<Value> arguments);
/// The second half of a property-like pair.
void CallSetter(const std::string &owner, const Method &method, Entity *self, const Value &value);

} // namespace sim::host
