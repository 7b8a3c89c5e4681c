// Making host objects by class name, and asking what an object is.
#pragma once

#include "host/owned.h"

/// A new instance of the class, or of the other one where the application lacks the first; null where it lacks both.
OwnedObject NewInstance(const char *className, const char *otherClassName);

/// Whether the object is an instance of the named class. A class that the application lacks has no instances.
bool IsA(REALobjectStruct *object, const char *className);
