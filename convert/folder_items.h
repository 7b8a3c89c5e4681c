// Folder items and file URLs, in both directions.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/owned.h"

/// Whether the object is a folder item: known by a method that only these have.
bool IsFolderItem(REALobjectStruct *object);

/// +1; the URL of an existing item, or of one that does not exist yet in a folder that does. Null for anything else,
/// and for a new item whose name is not well-formed UTF-16.
[[nodiscard]] CFURLRef CreateCFURLfromFolderItem(REALfolderItemStruct *item);

/// A folder item for a file that exists or could be made, else the absolute URL as text, or null.
OwnedObject FolderItemOrText(CFURLRef url);
