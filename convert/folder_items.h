// Host folder items to file URLs.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// +1; the URL of an existing item, or of one that does not exist yet in a folder that does. Null for anything else,
/// and for a new item whose name is not well-formed UTF-16.
[[nodiscard]] CFURLRef CreateCFURLfromFolderItem(REALfolderItemStruct *item);
