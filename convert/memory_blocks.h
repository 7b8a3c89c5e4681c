// Memory blocks in both directions.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/owned.h"

/// A copy of the block's bytes; empty for a block without any.
OwnedCF<CFDataRef> CopyMemoryBlock(REALobjectStruct *block);

/// A new block with a copy of the bytes; null for no bytes. Raises "OutOfMemoryException" when the block cannot be had.
OwnedObject NewMemoryBlock(CFDataRef data);
