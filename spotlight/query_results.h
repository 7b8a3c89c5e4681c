// Results as host objects.
#pragma once

#include <CoreServices/CoreServices.h>

#include "host/owned.h"

/// A new host array with an object for each item; null items, and those for which the host makes no object, leave no
/// gap. A null array of items gives an empty one. Null only when the host cannot make arrays.
OwnedHost<_REALarrayObject> ConvertArray(CFArrayRef items);
