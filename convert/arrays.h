// Arrays in both directions: host arrays that variants hold, and lists.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/owned.h"

/// Null when no array can be created.
using ArrayConversion = OwnedCF<CFMutableArrayRef> (*)(_REALarray *array);

/// How arrays of this variant type are converted; null when the type is none of the eight array types.
ArrayConversion ConversionOfArray(int32_t variantType);

/// A new host array with the converted elements; null where the host makes no array, and for a list with elements where
/// the host cannot tell an array's upper bound.
OwnedHost<_REALarrayObject> NewHostArray(CFArrayRef values);
