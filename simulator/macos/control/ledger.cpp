// Reading the list of live objects, and comparing two readings.
#include "simulator/macos/control/ledger.h"

#include "simulator/macos/CoreFoundation/registry.h"

namespace sim::macos::ledger {

std::string ToText(const Entry &entry) {
    return entry.type + (entry.description.empty() ? "" : " " + entry.description) + ", retain count " +
           std::to_string(entry.retainCount) + ", made by " + macos::ToText(entry.made);
}

Snapshot Take() {
    Snapshot snapshot;
    for (Entry &entry : Registry::Instance().LiveObjects())
        snapshot.objects.emplace(entry.serial, std::move(entry));
    return snapshot;
}

std::size_t LiveCount() { return Registry::Instance().LiveCount(); }

Difference Since(const Snapshot &before) {
    Difference difference;
    Snapshot now = Take();
    for (const auto &[serial, entry] : now.objects) {
        auto known = before.objects.find(serial);
        if (known == before.objects.end())
            difference.made.push_back(entry);
        else if (known->second.retainCount != entry.retainCount)
            difference.changed.push_back({known->second, entry});
    }
    for (const auto &[serial, entry] : before.objects)
        if (!now.objects.contains(serial))
            difference.gone.push_back(entry);
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
