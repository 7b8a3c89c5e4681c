// Calling the plugin as a compiled host program does: arguments become 32-bit words on the stack in the order of their
// declaration, the result comes back in the registers that its declared type prescribes. The caller keeps its
// references during the call; a counted result belongs to it afterwards.
#pragma once

#include "simulator/host/classes/classes.h"
#include "simulator/host/entities/value.h"

namespace sim::host {

class ArrayEntity;

/// Calls a declared function. `self` is the instance, or null for shared and global methods. `owner` is the class or
/// module, for messages. Missing arguments are filled with their presets.
Value CallMethod(const std::string &owner, const Method &method, Entity *self, std::vector<Value> arguments);
/// The second half of a property-like pair.
void CallSetter(const std::string &owner, const Method &method, Entity *self, const Value &value);

Value GetProperty(const Property &property, class Instance &instance);
void SetProperty(const Property &property, Instance &instance, const Value &value);

/// The value of a declared type in the words at `words`. A counted one is shared, or adopted where `owned`. One that is
/// not of the declared type stops the host.
Value ValueFromWords(const Type &type, const Word *words, bool owned);

/// Throws ProgramError when an array of objects may not hold that.
void RequireElementFits(const ArrayEntity &array, const Value &value);

} // namespace sim::host
