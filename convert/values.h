// Values of every kind, to the host and from it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// A variant for scalars and strings, a host object for dates, folder items, arrays, dictionaries, memory blocks and
/// references without a natural host value: +1, or null for nil. The value is borrowed. Data that finds no memory
/// raises "OutOfMemoryException", a list whose host array shrinks meanwhile "OutOfBoundsException".
[[nodiscard]] REALobjectStruct *GetCFTypeAsVariant(CFTypeRef value);

/// +1; null for nil and for a value without a Core Foundation form. Raises nothing, except "OutOfBoundsException" for
/// an array that shrinks while it is read.
[[nodiscard]] CFTypeRef CopyVariantAsCFType(REALobjectStruct *value);
