// Host arrays held by variants.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// +1, or null when no array can be created.
using ArrayConversion = CFTypeRef (*)(_REALarray *array);

/// How arrays of this variant type are converted; null when the type is none of the eight array types.
ArrayConversion ConversionOfArray(int32_t variantType);
