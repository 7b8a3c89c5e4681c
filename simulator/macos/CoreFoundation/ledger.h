// The ledger of live objects: what is alive, how often it is retained and where it was made. A test takes a snapshot,
// does its work, and asks for the difference; whatever is in it was leaked or released once too often. Constants,
// singletons and other objects that no program can free are not in the ledger.
#pragma once

#include "simulator/macos/control/trace.h"

#include <CoreFoundation/CFBase.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace sim::macos::ledger {

/// One live object.
struct Entry {
    std::uint64_t serial; ///< Counts creations; never used twice, whatever happens to addresses.
    CFTypeRef object;     ///< Borrowed.
    std::string type;
    std::string description;
    CFIndex retainCount;
    Trace made;
};

/// "CFString "abc", retain count 1, made by CFStringCreateWithBytes < ..."
std::string ToText(const Entry &entry);

/// What a snapshot keeps of one object: enough to tell whether it changed, and what to call it when it is gone.
struct Mark {
    std::uint64_t serial;
    CFTypeRef object; ///< Borrowed, and perhaps dead.
    CFTypeID type;
    CFIndex retainCount;
    Trace made;
};

/// Which objects were alive and how often each was retained. Holds no reference and no text, so taking one is cheap.
struct Snapshot {
    std::vector<Mark> objects; ///< Newest first.
};

Snapshot Take();
std::size_t LiveCount();

struct Change {
    Entry before;
    Entry after;
};

/// What differs between a snapshot and now.
struct Difference {
    std::vector<Entry> made;     ///< Made since and still alive: leaked, when the work is over.
    std::vector<Entry> gone;     ///< Alive then, dead now.
    std::vector<Change> changed; ///< Alive both times, with another retain count.

    bool Empty() const { return made.empty() && gone.empty() && changed.empty(); }
    /// One line for each object; empty when nothing differs.
    std::string ToText() const;
};

Difference Since(const Snapshot &before);
/// Only of what was made or changed and is wanted, by what it is now; nothing else is described. What is gone is told
/// always.
Difference Since(const Snapshot &before, const std::function<bool(const Mark &)> &isWanted);

} // namespace sim::macos::ledger
