// Dates in both directions.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/owned.h"

/// +1; null for a null date or one of which a calendar field cannot be read. The fields are taken as GMT, unchecked.
[[nodiscard]] CFDateRef RBDate2CFDate(_REALdate *date);

/// A new host date with the calendar fields of GMT, or null where the host makes none. Fractions of a second are cut
/// off; a second can be 60, which is what the system makes of times just before 2001.
OwnedObject NewHostDate(CFDateRef value);
