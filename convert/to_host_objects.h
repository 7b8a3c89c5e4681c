// Wrapping references that have no natural host value.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// An instance of the named class that owns one retain on the value: +1, or null when the application lacks the class.
REALobjectStruct *WrapperKeptBy(CFTypeRef value, const char *className, CFTypeRef (*retain)(CFTypeRef));

/// The same with CFRetain, in "CFObjectQTX" when the application lacks the class; null when it lacks both or the
/// instance is not a wrapper.
REALobjectStruct *WrapperOrCFObject(CFTypeRef value, const char *className);
