// The floor of every conversion: what must be called, in the order in which it must be called, from code that has every
// pointer at hand and holds nothing that could be dropped. Nothing here is safe against a host that lacks a service or
// throws; what is required of each conversion by name (a zeroed buffer, an element function asked for each element, the
// order of the tests for types) is done.
#pragma once

#include "bench/bare_host.h"

#include <CoreServices/CoreServices.h>

namespace bench::floors {

/// The pointers and facts that a floor has at hand, set before anything is counted.
struct AtHand {
    Age age;
    const uint32_t *queryRecord;
    const uint32_t *itemRecord;
};
extern AtHand atHand;

/// +1, or null.
String *StringOf(CFStringRef text);

/// +1. Old hosts are read in place when they have no CFString; new ones are then asked for length and bytes.
CFStringRef CopyText(String *string);

/// +1, or null.
Object *VariantOf(CFTypeRef value);

/// +1.
CFTypeRef CopyValue(Object *variant);

/// +1.
Object *ItemObject(MDItemRef item);

/// +1. A null list gives an empty array.
Object *ItemArray(CFArrayRef items);

} // namespace bench::floors
