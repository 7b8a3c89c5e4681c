// Sorting: the methods of the query class that change the order of the results, and the functions of the framework that
// they call. Not every system has these: start-up looks them up by name; null means that the running system lacks one,
// or that none was looked up.
#pragma once

#include <CoreServices/CoreServices.h>

#include "host/handles.h"

extern decltype(&MDQueryGetSortOptionFlagsForAttribute) myMDQueryGetSortOptionFlagsForAttribute;
extern decltype(&MDQuerySetSortOptionFlagsForAttribute) myMDQuerySetSortOptionFlagsForAttribute;
extern decltype(&MDQuerySetSortOrder) myMDQuerySetSortOrder;

/// The framework that the functions were looked up in; null when it was not loaded. Never released.
extern CFBundleRef CoreServicesFramework;

/// Looks the functions up in the running system's CoreServices, if the host runs a built application. What cannot be
/// had stays null.
void LoadSortFunctions();

// Methods of the query class.
int32_t rbMDQueryGetSortOptionFlagsForAttribute(REALobjectStruct *self, REALstringStruct *fieldName);
bool rbMDQuerySetSortOptionFlagsForAttribute(REALobjectStruct *self, REALstringStruct *fieldName, uint32_t flags);
bool rbMDQuerySetSortOrder(REALobjectStruct *self, _REALarrayString *sortingAttributes);
