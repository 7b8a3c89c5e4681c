// The local notification centre.
#include "simulator/macos/CoreFoundation/notification_center.h"

#include "simulator/macos/CoreFoundation/text.h"

#include <algorithm>
#include <vector>

namespace sim::macos {
namespace {

notifications::CallWatch *callWatch = nullptr;

} // namespace

NotificationCenter &NotificationCenter::Local() {
    static NotificationCenter *center = new NotificationCenter(Immortal{});
    return *center;
}

void NotificationCenter::Add(const void *observer, CFNotificationCallback callback, CFStringRef name,
                             const void *object, CFNotificationSuspensionBehavior suspensionBehavior) {
    auto registration = std::make_shared<Registration>();
    registration->observer = observer;
    registration->entry = {callback, name ? std::optional(CharactersOf(name)) : std::nullopt, object,
                           suspensionBehavior};
    registrations_.push_back(std::move(registration));
}

void NotificationCenter::RemoveEvery(const void *observer) {
    std::erase_if(registrations_, [&](const std::shared_ptr<Registration> &registration) {
        const bool gone = registration->observer == observer;
        registration->removed |= gone;
        return gone;
    });
}

void NotificationCenter::Post(CFStringRef name, const void *object, CFDictionaryRef userInfo) {
    const std::u16string text = CharactersOf(name);
    std::vector<std::shared_ptr<Registration>> reached;
    for (const std::shared_ptr<Registration> &registration : registrations_) {
        const notifications::Entry &wanted = registration->entry;
        if ((!wanted.name || *wanted.name == text) && (!wanted.object || wanted.object == object))
            reached.push_back(registration);
    }
    const auto keptName = CFRef<CFStringRef>::Retain(name);
    const auto keptInfo = CFRef<CFDictionaryRef>::Retain(userInfo);
    for (const std::shared_ptr<Registration> &registration : reached) {
        if (registration->removed)
            continue;
        if (callWatch)
            callWatch->ObserverBegins(Utf8(text));
        registration->entry.callback(As<CFNotificationCenterRef>(), const_cast<void *>(registration->observer), name,
                                     object, userInfo);
        if (callWatch)
            callWatch->ObserverEnds();
    }
}

std::size_t NotificationCenter::RegistrationCount(const void *observer) const {
    return static_cast<std::size_t>(
        std::count_if(registrations_.begin(), registrations_.end(),
                      [&](const auto &registration) { return registration->observer == observer; }));
}

std::vector<notifications::Entry> NotificationCenter::EntriesOf(const void *observer) const {
    std::vector<notifications::Entry> entries;
    for (const auto &registration : registrations_)
        if (registration->observer == observer)
            entries.push_back(registration->entry);
    return entries;
}

namespace notifications {

void Watch(CallWatch *watch) { callWatch = watch; }

std::size_t RegistrationCount() { return NotificationCenter::Local().RegistrationCount(); }

std::size_t RegistrationCount(const void *observer) { return NotificationCenter::Local().RegistrationCount(observer); }

std::vector<Entry> EntriesOf(const void *observer) { return NotificationCenter::Local().EntriesOf(observer); }

} // namespace notifications

} // namespace sim::macos

using namespace sim::macos;

CFTypeID CFNotificationCenterGetTypeID() {
    static const CFTypeID type = RegisterType("CFNotificationCenter");
    return type;
}

CFNotificationCenterRef CFNotificationCenterGetLocalCenter() {
    return NotificationCenter::Local().As<CFNotificationCenterRef>();
}

void CFNotificationCenterAddObserver(CFNotificationCenterRef center, const void *observer,
                                     CFNotificationCallback callBack, CFStringRef name, const void *object,
                                     CFNotificationSuspensionBehavior suspensionBehavior) {
    // The behaviour means nothing to the local centre, but a number that means nothing anywhere is a mistake.
    if (suspensionBehavior < CFNotificationSuspensionBehaviorDrop ||
        suspensionBehavior > CFNotificationSuspensionBehaviorDeliverImmediately)
        Stop("CFNotificationCenterAddObserver was given the unknown suspension behaviour " +
             std::to_string(static_cast<int>(suspensionBehavior)));
    if (!callBack)
        Stop("CFNotificationCenterAddObserver was given no callback");
    Expect<NotificationCenter>(center).Add(observer, callBack, name, object, suspensionBehavior);
}

void CFNotificationCenterRemoveEveryObserver(CFNotificationCenterRef center, const void *observer) {
    Expect<NotificationCenter>(center).RemoveEvery(observer);
}

void CFNotificationCenterPostNotification(CFNotificationCenterRef center, CFStringRef name, const void *object,
                                          CFDictionaryRef userInfo, Boolean) {
    Expect<NotificationCenter>(center).Post(name, object, userInfo);
}
