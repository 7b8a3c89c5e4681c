// Memory blocks in both directions.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// +1: a copy of the block's bytes; empty for a block without any.
[[nodiscard]] CFTypeRef CopyMemoryBlock(REALobjectStruct *block);

/// +1; nil for no bytes. Raises "OutOfMemoryException" when the block cannot be had. The value is CFData.
REALobjectStruct *HostMemoryBlock(CFTypeRef value);
