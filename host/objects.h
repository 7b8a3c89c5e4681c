// Questions about host objects.
#pragma once

#include "host/services.h"

/// Whether the object is an instance of the named class. A class that the application lacks has no instances.
inline bool IsA(REALobjectStruct *object, const char *className) {
    REALclassStruct *classRef = REALGetClassRef(className);
    return classRef && REALObjectIsA(object, classRef);
}
