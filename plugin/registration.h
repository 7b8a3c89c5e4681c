// Handing the class records to the host.
#pragma once

#include "host/declarations.h"

/// Registers a class. On a host that knows only the old layout the record is rewritten first. A host that takes no
/// classes is passed over in silence.
void MyREALRegisterClass(REALclassDefinition &record);
