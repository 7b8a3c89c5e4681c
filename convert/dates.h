// Host dates to Core Foundation dates.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// +1; null for a null date or one of which a calendar field cannot be read. The fields are taken as GMT, unchecked.
[[nodiscard]] CFDateRef RBDate2CFDate(_REALdate *date);
