#include "spotlight/query_events.h"

#include "host/owned.h"
#include "host/services.h"
#include "spotlight/item.h"
#include "spotlight/query.h"

namespace {

/// Which event a notification raises, told by the content of its name; null for a name that is none of the three.
const REALevent *EventOf(CFStringRef name) {
    const struct {
        CFStringRef notification;
        QueryEvent event;
    } rows[] = {
        {kMDQueryProgressNotification, kProgress},
        {kMDQueryDidFinishNotification, kFinish},
        {kMDQueryDidUpdateNotification, kUpdate},
    };
    for (const auto &row : rows)
        if (CFStringCompare(name, row.notification, 0) == kCFCompareEqualTo)
            return &MDQueryEvents[row.event];
    return nullptr;
}

/// What host code attached to an event of an object, or null. An old host knows the event by the copy that it was
/// given, to which the record points; an event without a copy is unknown to it.
HostCode HandlerOf(REALobjectStruct *self, const REALevent &event) {
    if (!HostReadsOldRecords())
        return REALGetEventInstance(self, event.forSystemUse);
    const auto *copy = reinterpret_cast<const OldREALevent *>(event.forSystemUse);
    return copy ? REALGetEventInstance(self, copy->forSystemUse) : nullptr;
}

OwnedCF<CFArrayRef> HoldUpdatedItems(CFDictionaryRef userInfo, CFStringRef key) {
    const auto items = static_cast<CFArrayRef>(userInfo ? CFDictionaryGetValue(userInfo, key) : nullptr);
    return items ? HoldCF(items) : OwnedCF<CFArrayRef>();
}

void CallHandlerWithItems(REALobjectStruct *self, HostCode handler, CFDictionaryRef userInfo) {
    using Handler = void (*)(REALobjectStruct *, _REALarray * added, _REALarray * changed, _REALarray * removed);

    auto added = HoldUpdatedItems(userInfo, kMDQueryUpdateAddedItems);
    auto changed = HoldUpdatedItems(userInfo, kMDQueryUpdateChangedItems);
    auto removed = HoldUpdatedItems(userInfo, kMDQueryUpdateRemovedItems);
    auto hostAdded = ConvertArray(added.Get());
    auto hostChanged = ConvertArray(changed.Get());
    auto hostRemoved = ConvertArray(removed.Get());
    reinterpret_cast<Handler>(handler)(self, hostAdded.Get(), hostChanged.Get(), hostRemoved.Get());
    Release(hostAdded, hostChanged, hostRemoved, added, changed, removed);
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
        CallHandlerWithItems(self, handler, userInfo);
}

void ObserveQuery(REALobjectStruct *self, MDQueryRef query) {
    CFNotificationCenterRef center = CFNotificationCenterGetLocalCenter();
    for (CFStringRef name :
         {kMDQueryProgressNotification, kMDQueryDidUpdateNotification, kMDQueryDidFinishNotification})
        CFNotificationCenterAddObserver(center, self, MyCallBack, name, query,
                                        CFNotificationSuspensionBehaviorDeliverImmediately);
}
