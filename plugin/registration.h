// Handing the class records to the host.
#pragma once

#include "host/declarations.h"

/// Registers a class. On a host that knows only the old layout the record is rewritten first, with new tables that are
/// never freed. A host that takes no classes is passed over in silence.
void MyREALRegisterClass(REALclassDefinition &record);

/// A new array of the old layout's property records, for good, made of the current ones; null for none, or when there
/// is no memory.
REALproperty *FixProperties(const REALproperty *properties, uint32_t count);
