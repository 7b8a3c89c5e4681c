// Host values to Core Foundation values.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// +1; null for nil and for a value without a Core Foundation form. Raises nothing, except "OutOfBoundsException" for
/// an array that shrinks while it is read.
[[nodiscard]] CFTypeRef CopyVariantAsCFType(REALobjectStruct *value);
