// The classes and methods that the plugin registered, as programs see them.
#pragma once

#include "simulator/host/host.h"
#include "simulator/language/symbols.h"

namespace sim::language {

/// Takes over everything that arrived in the host that is alive now. Calls go through the plugin's declarations and
/// nothing else.
void AddPluginSymbols(host::Host &host, Symbols &symbols);

} // namespace sim::language
