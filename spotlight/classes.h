// The classes that start-up registers.
#pragma once

#include "host/declarations.h"

extern REALclassDefinition MDItemClass;
extern REALclassDefinition MDQueryClass;
extern REALclassDefinition MDQueryBatchingParamsClass;
