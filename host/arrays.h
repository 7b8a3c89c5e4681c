// Host arrays: making them, and reading and writing their elements on hosts of every age. Hosts before 2016 may keep
// the elements in a table that is used without a call; where there is none, or where the host cannot add a reference to
// what is taken from it, the host is asked.
#pragma once

#include "host/owned.h"

/// A new empty string array, +1, or null.
_REALarrayString *NewStringArray();
/// A new object array, +1, or null.
_REALarrayObject *NewObjectArray(int32_t upperBound = -1);

/// Element `index`, +1, or null. An index outside the array raises "OutOfBoundsException". A host that has to be asked
/// is asked for the element itself, not for an element function.
REALstringStruct *REALGetArrayString(_REALarrayString *array, int32_t index);

// One element read in place where the host allows it, else through the element function of its type. The index is taken
// to be inside the array. A host without the means gives null or false.
/// +1 or null.
REALobjectStruct *ReadArrayObject(_REALarray *array, int32_t index);
/// +1 or null.
REALstringStruct *ReadArrayString(_REALarray *array, int32_t index);
bool ReadArrayBoolean(_REALarray *array, int32_t index);

/// Whether the elements lie in a table that is read without a host call.
bool HasDirectElements(_REALarray *array);

/// Stores an object, which the array locks for itself. An index outside the array raises "OutOfBoundsException" and
/// stores nothing.
void StoreArrayObject(_REALarray *array, int32_t index, REALobjectStruct *object);

/// The upper bound, -1 for an empty array, cut off where counting on past it would overflow.
int32_t UpperBoundOf(_REALarray *array);

/// Whether the index is still inside the array. If not, "OutOfBoundsException" has been raised with the array's present
/// size.
bool CheckArrayIndex(_REALarray *array, int32_t index);
