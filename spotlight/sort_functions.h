// The functions of the framework that not every system has. Start-up looks them up by name; null means that the running
// system lacks one.
#pragma once

#include <CoreServices/CoreServices.h>

extern decltype(&MDQueryGetSortOptionFlagsForAttribute) myMDQueryGetSortOptionFlagsForAttribute;
extern decltype(&MDQuerySetSortOptionFlagsForAttribute) myMDQuerySetSortOptionFlagsForAttribute;
extern decltype(&MDQuerySetSortOrder) myMDQuerySetSortOrder;
