// The floors of whole methods and of what the system calls: functions of the shapes in which the plugin registers its
// own. What is required of every method is done here too: its query or item is found through the class's record and
// tested.
#pragma once

#include "bench/bare_host.h"

#include <CoreServices/CoreServices.h>

namespace bench::floors {

void StartUp(Resolver resolver);

// Queries.
unsigned char IsGatheringComplete(Object *self);
int32_t ResultCount(Object *self);
void Stop(Object *self);
void DisableUpdates(Object *self);
void EnableUpdates(Object *self);
void SetMaxCount(Object *self, int32_t size);
unsigned char Execute(Object *self, int32_t flags);
String *QueryString(Object *self);
int32_t IndexOfResult(Object *self, Object *item);
Object *ResultAtIndex(Object *self, int32_t index);
/// Of all of them.
Object *Results(Object *self, int32_t limit);
Object *ValuesOfAttribute(Object *self, String *name);
uint32_t CountOfResultsWithAttributeValue(Object *self, String *name, Object *value);
/// What comes with a notification, told to the handler of a query's event.
void Notify(CFNotificationCenterRef center, void *observer, CFStringRef name, const void *object,
            CFDictionaryRef userInfo);

// Items.
unsigned char AttributeBoolean(Object *self, String *name);
Object *GetAttribute(Object *self, String *name);

// The global method.
int32_t ShowSearchWindow(String *text);

} // namespace bench::floors
