// Values of every kind, nested, as the bytes of an input tell. Both makers give small values: the budget is shared by
// all that hangs together.
#pragma once

#include "fuzz/input.h"
#include "simulator/host/host.h"
#include "tests/convert/core_values.h"

namespace fuzz {

/// How much may still be made, and what was made that another run may see differently.
struct Making {
    Input &input;
    int budget = 60;
    int depth = 0;
    /// Dates beyond what a double tells apart in seconds, or numbers that the plugin makes of addresses.
    bool isUnstable = false;

    /// Whether there is room for one more; the innermost values are simple.
    bool MayNest() const { return budget > 0 && depth < 24; }
};

/// Never null.
tests::CoreValue MakeCoreValue(Making &making);

/// May be nil. Wrappers own what they hold.
sim::host::Value MakeHostValue(Making &making, sim::host::Host &host);

/// A file name, mostly odd.
std::string MakeName(Input &input);

} // namespace fuzz
