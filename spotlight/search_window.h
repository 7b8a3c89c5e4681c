// The global method that opens the system's search window.
#pragma once

#include "host/handles.h"

/// Opens the window with the text, or empty for a text that does not convert. The framework's status: 0 for success.
int32_t rbHISearchWindowShow(REALstringStruct *searchString);
