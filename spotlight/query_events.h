// From the framework's notifications to the host's events.
#pragma once

#include <CoreServices/CoreServices.h>

#include "host/handles.h"

/// What every query object observes its query with. The observer is the host object; it must be alive, which its
/// destructor sees to.
void MyCallBack(CFNotificationCenterRef center, void *observer, CFStringRef name, const void *object,
                CFDictionaryRef userInfo);

/// Sees to it that the framework's local centre calls MyCallBack, with the host object itself, for each of the query's
/// three notifications. The destructor takes the object off before the query goes.
void ObserveQuery(REALobjectStruct *self, MDQueryRef query);
