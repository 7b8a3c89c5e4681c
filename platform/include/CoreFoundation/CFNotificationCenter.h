// Notification centres. Delivery on the local centre is synchronous, on the posting thread.
#pragma once

#include <CoreFoundation/CFDictionary.h>

CF_EXTERN_C_BEGIN

typedef struct __CFNotificationCenter *CFNotificationCenterRef;
typedef void (*CFNotificationCallback)(CFNotificationCenterRef center, void *observer, CFStringRef name,
                                       const void *object, CFDictionaryRef userInfo);
typedef enum {
    CFNotificationSuspensionBehaviorDrop = 1,
    CFNotificationSuspensionBehaviorCoalesce = 2,
    CFNotificationSuspensionBehaviorHold = 3,
    CFNotificationSuspensionBehaviorDeliverImmediately = 4
} CFNotificationSuspensionBehavior;

CFTypeID CFNotificationCenterGetTypeID(void);
/// Borrowed.
CFNotificationCenterRef CFNotificationCenterGetLocalCenter(void);
/// The observer is an address, never dereferenced or retained. A non-null object limits delivery to what that object
/// posts.
void CFNotificationCenterAddObserver(CFNotificationCenterRef center, const void *observer,
                                     CFNotificationCallback callBack, CFStringRef name, const void *object,
                                     CFNotificationSuspensionBehavior suspensionBehavior);
void CFNotificationCenterRemoveEveryObserver(CFNotificationCenterRef center, const void *observer);
void CFNotificationCenterPostNotification(CFNotificationCenterRef center, CFStringRef name, const void *object,
                                          CFDictionaryRef userInfo, Boolean deliverImmediately);

CF_EXTERN_C_END
