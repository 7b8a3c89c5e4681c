// Host folder items to file URLs.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// +1; the URL of an existing item, or of one that does not exist yet in a folder that does. Null for anything else.
[[nodiscard]] CFURLRef CreateCFURLfromFolderItem(REALfolderItemStruct *item);
