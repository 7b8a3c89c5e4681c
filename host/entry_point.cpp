#include "host/entry_point.h"

HostCode ResolveEntryPoint(const char *name, const char *olderName) {
    HostCode found = gResolver(name);
    if (!found && olderName)
        found = gResolver(olderName);
    return found;
}
