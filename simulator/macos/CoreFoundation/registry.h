// The bookkeeping behind objects: the list of live ones, and what is known of those that died last. It is what the
// ledger reads and what tells a dead reference from a live one.
#pragma once

#include "simulator/macos/CoreFoundation/ledger.h"
#include "simulator/macos/CoreFoundation/object.h"

#include <deque>
#include <optional>
#include <unordered_map>
#include <utility>

namespace sim::macos {

/// What is remembered of a dead object.
struct DeadObject {
    std::uint64_t serial;
    CFTypeID type;
    std::string description;
    Trace made;
    Trace died;
};

/// What lies where a dead object was, for as long as it is remembered: the second word is the one by which a reference
/// is recognised.
struct Remains {
    static constexpr std::uint32_t kDead = 0x64616564;

    const DeadObject *object = nullptr;
    std::uint32_t state = kDead;
};

class Registry {
public:
    /// So many of those that died last.
    static constexpr std::size_t kRemembered = 8192;

    static Registry &Instance();

    void Add(Object &object);
    void Remove(Object &object);

    /// Remembers a dead object. The memory stays unused for as long as the object is remembered, so that its address
    /// cannot become another object's meanwhile; under AddressSanitizer it is freed at once, for that has its own way.
    void Remember(void *memory, DeadObject object);
    /// The object that died last at an address which is no other's since.
    std::optional<DeadObject> Recall(CFTypeRef address);
    /// Searches all that are remembered, those too whose address is in use again.
    std::optional<DeadObject> Recall(std::uint64_t serial);

    /// Whether nobody but the stand-in can have seen the object (Unseen).
    bool IsUnseen(const Object &object) const { return object.serial_ > unseenFrom_; }

    std::size_t LiveCount();
    /// Newest first.
    template <class Visitor> void VisitLive(const Visitor &visitor) const {
        for (const Object *object = first_; object; object = object->next_)
            visitor(*object);
    }
    static std::uint64_t SerialOf(const Object &object) { return object.serial_; }
    static ledger::Mark MarkOf(const Object &object);

private:
    friend class Unseen;

    struct Grave {
        void *memory;
        DeadObject object;
    };

    Object *first_ = nullptr;
    std::size_t count_ = 0;
    std::uint64_t lastSerial_ = 0;
    std::uint64_t unseenFrom_ = ~std::uint64_t{0};
    std::deque<Grave> graves_; // oldest first
    /// Only where dead memory cannot be read: elsewhere it says itself whose it was.
    std::unordered_map<const void *, const DeadObject *> dead_;
};

/// While it lives, only the stand-in looks at what is made. Objects that die meanwhile, having been made meanwhile, are
/// not remembered: nobody can be left with a reference to one.
class Unseen {
public:
    Unseen() : previous_(std::exchange(Registry::Instance().unseenFrom_, Registry::Instance().lastSerial_)) {}
    Unseen(const Unseen &) = delete;
    Unseen &operator=(const Unseen &) = delete;
    ~Unseen() { Registry::Instance().unseenFrom_ = previous_; }

private:
    std::uint64_t previous_;
};

} // namespace sim::macos
