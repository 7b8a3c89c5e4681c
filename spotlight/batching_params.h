// The class of the batching numbers.
#pragma once

#include "host/declarations.h"

extern REALclassDefinition MDQueryBatchingParamsClass;
