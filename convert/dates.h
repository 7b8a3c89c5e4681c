// Dates in both directions.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// +1; null for a null date or one of which a calendar field cannot be read. The fields are taken as GMT, unchecked.
[[nodiscard]] CFDateRef RBDate2CFDate(_REALdate *date);

/// A new host date, +1, or null for nil; the value is a CFDate. Calendar fields of GMT, fractions of a second cut off:
/// 0 to 60, the 60 from just before 2001 on some systems.
REALobjectStruct *HostDate(CFTypeRef value);
