// Host dictionaries held by variants.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// +1, or null when no dictionary can be created. A key or value without a Core Foundation form becomes kCFNull; an
/// entry without key is left out.
[[nodiscard]] CFTypeRef CopyDictionary(REALobjectStruct *dictionary);
