// The conversions to natural host values, one Core Foundation type each. Results are +1, or null for nil; values are
// borrowed and of the type that the function expects.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

REALobjectStruct *NilValue(CFTypeRef value);
REALobjectStruct *BooleanVariant(CFTypeRef value);
/// 64-bit floats, 32-bit integers or 64-bit integers, as the number is stored.
REALobjectStruct *NumberVariant(CFTypeRef value);
REALobjectStruct *StringVariant(CFTypeRef value);
/// Calendar fields of GMT, fractions of a second cut off: 0 to 60, the 60 from just before 2001 on some systems.
REALobjectStruct *HostDate(CFTypeRef value);
/// Nil for no bytes; raises "OutOfMemoryException" when the block cannot be had.
REALobjectStruct *HostMemoryBlock(CFTypeRef value);
/// Nil for a list with elements where the host cannot tell an array's upper bound.
REALobjectStruct *HostArray(CFTypeRef value);
REALobjectStruct *HostDictionary(CFTypeRef value);
/// A folder item for a file that exists or could be made, else the absolute URL as text.
REALobjectStruct *FolderItemOrText(CFTypeRef value);
