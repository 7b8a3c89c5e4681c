// Where a class keeps its fields inside a host object.
#pragma once

#include "host/declarations.h"

/// The plugin data of an instance: at the offset that the host wrote into the class record. The record is read on every
/// call, never copied.
template <class Data> Data &InstanceData(REALobjectStruct *instance, const REALclassDefinition &record) {
    return *reinterpret_cast<Data *>(reinterpret_cast<char *>(instance) + record.forSystemUse);
}
