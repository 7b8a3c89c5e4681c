// From the framework's notifications to the host's events.
#pragma once

#include <CoreServices/CoreServices.h>

/// What every query object observes its query with. The observer is the host object; it must be alive, which its
/// destructor sees to.
void MyCallBack(CFNotificationCenterRef center, void *observer, CFStringRef name, const void *object,
                CFDictionaryRef userInfo);
