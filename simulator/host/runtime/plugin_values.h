// Values as they come from the plugin, held against the type that it declared.
#pragma once

#include "simulator/host/declarations/declaration.h"
#include "simulator/host/declarations/records.h"

namespace sim::host {

/// The value of a declared type in the words at `words`. A counted one is shared, or adopted where `owned`. One that is
/// not of the declared type stops the host.
Value ValueFromWords(const Type &type, const Word *words, bool owned);

} // namespace sim::host
