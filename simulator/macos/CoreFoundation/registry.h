// The bookkeeping behind objects: the list of live ones, and what is known of those that died last. It is what the
// ledger reads and what tells a dead reference from a live one.
#pragma once

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/control/ledger.h"

#include <deque>
#include <mutex>
#include <optional>
#include <unordered_map>

namespace sim::macos {

/// What is remembered of a dead object.
struct DeadObject {
    std::string what; ///< Type and description.
    Trace made;
    Trace died;
};

class Registry {
public:
    static Registry &Instance();

    void Add(Object &object);
    void Remove(Object &object);

    /// Remembers a dead object. The memory stays unused for as long as the object is remembered, so that its address
    /// cannot become another object's meanwhile; under AddressSanitizer it is freed at once, for that has its own way.
    void Remember(void *memory, DeadObject object);
    std::optional<DeadObject> Recall(CFTypeRef address);

    std::size_t LiveCount();
    std::vector<ledger::Entry> LiveObjects();

private:
    static constexpr std::size_t kRemembered = 16384;

    std::mutex mutex_;
    Object *first_ = nullptr;
    std::size_t count_ = 0;
    std::uint64_t lastSerial_ = 0;
    std::unordered_map<const void *, DeadObject> dead_;
    std::deque<void *> burials_;
};

} // namespace sim::macos
