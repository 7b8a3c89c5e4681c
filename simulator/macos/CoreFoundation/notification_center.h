// The local notification centre: who observes what, and delivery in the posting thread, one observer after the other in
// the order of their registration. Observers and objects are addresses, neither retained nor looked into.
//
// A post reaches those that were registered when it began. An observer that is removed while the post is going on gets
// nothing more; one that is added then waits for the next post. Callbacks may post, add and remove.
#pragma once

#include "simulator/macos/CoreFoundation/notifications.h"
#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/ref.h"

#include <CoreFoundation/CFNotificationCenter.h>

#include <list>
#include <memory>
#include <vector>

namespace sim::macos {

class NotificationCenter final : public Object {
public:
    static NotificationCenter &Local();

    CFTypeID TypeID() const override { return CFNotificationCenterGetTypeID(); }

    /// Without a name the observer gets all names; without an object what any object posts, and what none posts.
    void Add(const void *observer, CFNotificationCallback callback, CFStringRef name, const void *object,
             CFNotificationSuspensionBehavior suspensionBehavior);
    void RemoveEvery(const void *observer);
    void Post(CFStringRef name, const void *object, CFDictionaryRef userInfo);

    std::size_t RegistrationCount() const { return registrations_.size(); }
    std::size_t RegistrationCount(const void *observer) const;
    std::vector<notifications::Entry> EntriesOf(const void *observer) const;

private:
    struct Registration {
        const void *observer;
        notifications::Entry entry;
        bool removed = false;
    };

    explicit NotificationCenter(Immortal immortal) : Object(immortal) {}

    std::list<std::shared_ptr<Registration>> registrations_;
};

} // namespace sim::macos
