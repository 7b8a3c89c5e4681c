// From what a program says about where to look to folders.
#pragma once

#include "simulator/macos/CoreServices/metadata/store/session.h"

#include <CoreFoundation/CFArray.h>

namespace sim::macos::store {

/// The folders that the entries name: URLs, absolute paths, and the names of the six scopes. Anything else names none.
/// A null array is no scope at all and means the computer; an empty one means nowhere.
Scope ResolveScope(CFArrayRef entries);

} // namespace sim::macos::store
