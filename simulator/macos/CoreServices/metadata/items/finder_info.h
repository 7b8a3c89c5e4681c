// The Finder information of a file: 32 bytes that the platform keeps for every file. A Linux file system has no place
// of its own for them; programs that carry the platform's extended attributes over keep them under the same name in the
// user's own space, "user.com.apple.FinderInfo", and there they are read.
#pragma once

#include "simulator/macos/CoreServices/metadata/items/file_facts.h"

namespace sim::macos {

struct FinderInfo {
    bool hasCustomIcon = false;
    bool isExtensionHidden = false;
    bool isStationery = false;
    bool isInvisible = false;
    /// 0 for none, up to 7.
    int label = 0;
};

/// Nothing is set for a file without the information, or with too little of it.
FinderInfo ReadFinderInfo(FileFacts &file);

} // namespace sim::macos
