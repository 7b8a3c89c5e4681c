// Reading the list of live objects, and comparing two readings.
#include "simulator/macos/CoreFoundation/ledger.h"

#include "simulator/macos/CoreFoundation/registry.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace sim::macos::ledger {

std::string ToText(const Entry &entry) {
    return entry.type + (entry.description.empty() ? "" : " " + entry.description) + ", retain count " +
           std::to_string(entry.retainCount) + ", made by " + macos::ToText(entry.made);
}

namespace {

Entry EntryOf(const Mark &mark, std::string description) {
    return {mark.serial, mark.object, TypeName(mark.type), std::move(description), mark.retainCount, mark.made};
}

Entry Living(const Mark &mark) { return EntryOf(mark, static_cast<const Object *>(mark.object)->Description()); }

// Described by what its obituary says; only objects that died very long ago have none any more.
Entry Gone(const Mark &mark) {
    const std::optional<DeadObject> dead = Registry::Instance().Recall(mark.serial);
    return EntryOf(mark, dead ? dead->description : "");
}

} // namespace

Snapshot Take() {
    Snapshot snapshot;
    snapshot.objects.reserve(Registry::Instance().LiveCount());
    Registry::Instance().VisitLive([&](const Object &object) { snapshot.objects.push_back(Registry::MarkOf(object)); });
    return snapshot;
}

std::size_t LiveCount() { return Registry::Instance().LiveCount(); }

Difference Since(const Snapshot &before) {
    return Since(before, [](const Mark &) { return true; });
}

Difference Since(const Snapshot &before, const std::function<bool(const Mark &)> &isWanted) {
    Difference difference;
    auto known = before.objects.begin();
    Registry::Instance().VisitLive([&](const Object &object) {
        const std::uint64_t serial = Registry::SerialOf(object);
        for (; known != before.objects.end() && known->serial > serial; ++known)
            difference.gone.push_back(Gone(*known));
        const bool isNew = known == before.objects.end() || known->serial < serial;
        if (isNew || known->retainCount != object.RetainCount()) {
            const Mark now = Registry::MarkOf(object);
            if (isNew && isWanted(now))
                difference.made.push_back(Living(now));
            else if (!isNew && isWanted(now))
                difference.changed.push_back({Living(*known), Living(now)});
        }
        if (!isNew)
            ++known;
    });
    for (; known != before.objects.end(); ++known)
        difference.gone.push_back(Gone(*known));
    // The lists come newest first; a reader wants to know what went wrong first.
    std::ranges::reverse(difference.made);
    std::ranges::reverse(difference.gone);
    std::ranges::reverse(difference.changed);
    return difference;
}

std::string Difference::ToText() const {
    std::string text;
    for (const Entry &entry : made)
        text += "still alive: " + ledger::ToText(entry) + "\n";
    for (const Entry &entry : gone)
        text += "gone: " + ledger::ToText(entry) + "\n";
    for (const Change &change : changed)
        text += "retain count was " + std::to_string(change.before.retainCount) + ": " + ledger::ToText(change.after) +
                "\n";
    return text;
}

} // namespace sim::macos::ledger
