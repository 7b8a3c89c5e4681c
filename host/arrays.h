// Host arrays: making them, and reading and writing their elements on hosts of every age. Hosts before 2016 may keep
// the elements in a table that is used without a call; where there is none, or where the host cannot add a reference to
// what is taken from it, the host is asked.
#pragma once

#include "host/owned.h"

/// A new empty string array, or null. Methods that return an array make it before they look for their query or item:
/// the host is asked in this order, and what they return without one is nil all the same.
OwnedHost<_REALarrayString> NewStringArray();
/// A new object array, or null. As above.
OwnedHost<_REALarrayObject> NewObjectArray(int32_t upperBound = -1);

/// Element `index`, +1, or null. An index outside the array raises "OutOfBoundsException". A host that has to be asked
/// is asked for the element itself, not for an element function.
[[nodiscard]] REALstringStruct *REALGetArrayString(_REALarrayString *array, int32_t index);

// One element, or null or false where the host has no means to read it. A host that has to be asked is asked for the
// element function. An index outside the array raises "OutOfBoundsException" and gives null or false.
OwnedObject ReadArrayObject(_REALarray *array, int32_t index);
OwnedString ReadArrayString(_REALarray *array, int32_t index);
bool ReadArrayBoolean(_REALarray *array, int32_t index);

/// Whether the elements lie in a table that is read without a host call.
bool HasDirectElements(_REALarray *array);

/// Stores an object, which the array locks for itself. An index outside the array raises "OutOfBoundsException" and
/// stores nothing.
void StoreArrayObject(_REALarray *array, int32_t index, REALobjectStruct *object);

/// The upper bound, -1 for an empty array, cut off where counting on past it would overflow.
int32_t UpperBoundOf(_REALarray *array);

/// Whether the index is still inside the array. Otherwise it raises "OutOfBoundsException" with the array's present
/// size.
bool RequireArrayIndex(_REALarray *array, int32_t index);
