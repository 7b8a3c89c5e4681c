// Arrays in both directions: host arrays that variants hold, and lists; and the arrays of strings that methods take and
// give.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/owned.h"

/// Null when no array can be created.
using ArrayConversion = OwnedCF<CFMutableArrayRef> (*)(_REALarray *array);

/// How arrays of this variant type are converted; null when the type is none of the eight array types.
ArrayConversion ConversionOfArray(int32_t variantType);

/// A new host array with the converted elements; null where the host makes no array, and for a list with elements where
/// the host cannot tell an array's upper bound.
OwnedHost<_REALarrayObject> ConvertToHostArray(CFArrayRef values);

/// +1; null for a null array, or when no array can be created. A string that does not convert leaves the empty string
/// in its place, and so does one that is gone because the array shrinks meanwhile, which raises "OutOfBoundsException".
[[nodiscard]] CFMutableArrayRef NewCFStringArray(_REALarrayString *array);

/// Inserts the strings of a Core Foundation array at the front of a host array, in their order. Null elements are
/// skipped; all others are taken to be strings.
void AddStringArray(_REALarrayString *array, CFArrayRef strings);

/// The array with the strings added, +1; nothing is added for a null list.
[[nodiscard]] _REALarrayString *WithStrings(OwnedHost<_REALarrayString> array, const OwnedCF<CFArrayRef> &strings);
