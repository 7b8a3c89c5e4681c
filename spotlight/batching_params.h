// The six numbers that control how a running query batches its notifications, as a host class and on the query.
#pragma once

#include "host/handles.h"

// Methods of the query class.
/// +1; null when the host makes no object.
REALobjectStruct *rbMDQueryBatchingParams(REALobjectStruct *self);
/// Null parameters are ignored.
void rbMDQuerySetBatchingParameters(REALobjectStruct *self, REALobjectStruct *parameters);
