// Queries: the class MDQueryQTX, its instance data, its events, and the check with which its methods begin.
#pragma once

#include <CoreServices/CoreServices.h>

#include "host/instance_data.h"
#include "spotlight/classes.h"

struct MDQueryData {
    /// Owned; null while no query exists. Host code sees it as an Integer and can write it.
    MDQueryRef Handle;
    /// A variant of host code's own, given up by the destructor.
    REALobjectStruct *Tag;
};

/// The events in the order of their declaration, by which notifications address them.
enum QueryEvent { kProgress, kFinish, kUpdate, kQueryEvents };
extern REALevent MDQueryEvents[kQueryEvents];

inline MDQueryData &QueryData(REALobjectStruct *query) { return InstanceData<MDQueryData>(query, MDQueryClass); }

/// The query of an instance, which is not null; borrowed. Without one it raises "NilObjectException" and gives null.
MDQueryRef RequireQuery(REALobjectStruct *self);
