// The Carbon umbrella: the search window of the human interface toolbox on top of ApplicationServices.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

CF_EXTERN_C_BEGIN

/// Opens the system's search window; a null text opens it empty. Options must be 0. Main thread only.
OSStatus HISearchWindowShow(CFStringRef searchString, OptionBits options);

CF_EXTERN_C_END
