// Host objects held by variants.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// Memory blocks, folder items, dictionaries and the wrappers of companion plugins, tested in a fixed order: +1, or
/// null for anything else.
[[nodiscard]] CFTypeRef CopyObjectAsCFType(REALobjectStruct *object);
