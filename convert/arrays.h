// Arrays in both directions: host arrays held by variants, and lists.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// +1, or null when no array can be created.
using ArrayConversion = CFTypeRef (*)(_REALarray *array);

/// How arrays of this variant type are converted; null when the type is none of the eight array types.
ArrayConversion ConversionOfArray(int32_t variantType);

/// A new host array with the converted elements of a list, +1; nil where the host makes no array, and for a list with
/// elements where the host cannot tell an array's upper bound.
REALobjectStruct *HostArray(CFTypeRef value);
