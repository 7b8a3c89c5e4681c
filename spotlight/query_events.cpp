#include "spotlight/query_events.h"

#include "host/owned.h"
#include "host/services.h"
#include "spotlight/item.h"
#include "spotlight/query.h"

namespace {

enum EventIndex { kProgress, kFinish, kUpdate };

struct Notification {
    const CFStringRef *name;
    EventIndex event;
};

/// Which event a notification raises, told by the content of its name; null for a name that is none of the three.
const REALevent *EventOf(CFStringRef name) {
    const Notification notifications[] = {
        {&kMDQueryProgressNotification, kProgress},
        {&kMDQueryDidFinishNotification, kFinish},
        {&kMDQueryDidUpdateNotification, kUpdate},
    };
    for (const Notification &notification : notifications)
        if (CFStringCompare(name, *notification.name, 0) == kCFCompareEqualTo)
            return &MDQueryEvents[notification.event];
    return nullptr;
}

/// What host code attached to an event of an object, or null. An old host knows the event by the copy that it was
/// given, to which the record points; an event without a copy is unknown to it.
HostCode HandlerOf(REALobjectStruct *self, const REALevent &event) {
    if (CurrentREALControlVersion != kOldDeclarationLayout)
        return REALGetEventInstance(self, event.forSystemUse);
    const auto *copy = reinterpret_cast<const OldREALevent *>(event.forSystemUse);
    return copy ? REALGetEventInstance(self, copy->forSystemUse) : nullptr;
}

OwnedCF<CFArrayRef> RetainedItems(CFDictionaryRef userInfo, CFStringRef key) {
    const void *items = userInfo ? CFDictionaryGetValue(userInfo, key) : nullptr;
    if (items)
        CFRetain(items);
    return OwnedCF<CFArrayRef>::Adopt(static_cast<CFArrayRef>(items));
}

void CallWithItems(REALobjectStruct *self, HostCode handler, CFDictionaryRef userInfo) {
    using Handler = void (*)(REALobjectStruct *, _REALarray * added, _REALarray * changed, _REALarray * removed);

    // Converted in the order added, changed, removed, and released in the same order: holders are declared the other
    // way round.
    OwnedCF<CFArrayRef> removed, changed, added;
    added = RetainedItems(userInfo, kMDQueryUpdateAddedItems);
    changed = RetainedItems(userInfo, kMDQueryUpdateChangedItems);
    removed = RetainedItems(userInfo, kMDQueryUpdateRemovedItems);

    OwnedHost<_REALarrayObject> hostRemoved, hostChanged, hostAdded;
    hostAdded = ConvertArray(added.Get());
    hostChanged = ConvertArray(changed.Get());
    hostRemoved = ConvertArray(removed.Get());
    reinterpret_cast<Handler>(handler)(self, hostAdded.Get(), hostChanged.Get(), hostRemoved.Get());
}

} // namespace

void MyCallBack(CFNotificationCenterRef, void *observer, CFStringRef name, const void *, CFDictionaryRef userInfo) {
    if (!observer)
        return;
    const REALevent *event = EventOf(name);
    if (!event)
        return;
    auto *self = static_cast<REALobjectStruct *>(observer);
    const HostCode handler = HandlerOf(self, *event);
    if (!handler)
        return;
    if (event == &MDQueryEvents[kFinish])
        reinterpret_cast<void (*)(REALobjectStruct *)>(handler)(self);
    else
        CallWithItems(self, handler, userInfo);
}
