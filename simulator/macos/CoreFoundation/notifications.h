// How many observer entries the local notification centre holds: an observer that outlives its object is a mistake like
// a leaked reference, and no ledger of objects shows it. And what an observer asked to hear, as it asked for it.
#pragma once

#include <CoreFoundation/CFNotificationCenter.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace sim::macos::notifications {

std::size_t RegistrationCount();
std::size_t RegistrationCount(const void *observer);

/// One entry of an observer.
struct Entry {
    CFNotificationCallback callback;
    std::optional<std::u16string> name; ///< Nothing when all names are to be heard.
    const void *object;                 ///< Null when what any object posts is to be heard.
    CFNotificationSuspensionBehavior suspensionBehavior;
};

/// In the order in which they were made.
std::vector<Entry> EntriesOf(const void *observer);

/// Hears of each call of an observer: with the notification's name before it, and of its end.
class CallWatch {
public:
    virtual ~CallWatch() = default;
    virtual void ObserverBegins(const std::string &notification) = 0;
    virtual void ObserverEnds() = 0;
};

/// Lets it hear from now on; borrowed. Null ends it.
void Watch(CallWatch *watch);

} // namespace sim::macos::notifications
