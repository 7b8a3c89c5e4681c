// The list of live objects and the memory of dead ones.
#include "simulator/macos/CoreFoundation/registry.h"

#include <cstring>
#include <new>

#if __has_feature(address_sanitizer)
#define SIMULATOR_ADDRESS_SANITIZER 1
#else
#define SIMULATOR_ADDRESS_SANITIZER 0
#endif

namespace sim::macos {

Registry &Registry::Instance() {
    static Registry *registry = new Registry; // never destroyed: objects die after static destructors have run
    return *registry;
}

void Registry::Add(Object &object) {
    if (SIMULATOR_ADDRESS_SANITIZER)
        dead_.erase(&object);
    object.serial_ = ++lastSerial_;
    object.next_ = first_;
    if (first_)
        first_->previous_ = &object;
    first_ = &object;
    ++count_;
}

void Registry::Remove(Object &object) {
    if (object.previous_)
        object.previous_->next_ = object.next_;
    else
        first_ = object.next_;
    if (object.next_)
        object.next_->previous_ = object.previous_;
    --count_;
}

void Registry::Remember(void *memory, DeadObject object) {
    const DeadObject *last = &graves_.emplace_back(Grave{memory, std::move(object)}).object;
    if (SIMULATOR_ADDRESS_SANITIZER) {
        dead_.insert_or_assign(memory, last);
        ::operator delete(memory);
    } else {
        const Remains remains{last};
        std::memcpy(memory, &remains, sizeof remains);
    }
    if (graves_.size() <= kRemembered)
        return;
    const Grave &oldest = graves_.front();
    if (!SIMULATOR_ADDRESS_SANITIZER)
        ::operator delete(oldest.memory);
    else if (auto found = dead_.find(oldest.memory); found != dead_.end() && found->second == &oldest.object)
        dead_.erase(found);
    graves_.pop_front();
}

std::optional<DeadObject> Registry::Recall(CFTypeRef address) {
    if (SIMULATOR_ADDRESS_SANITIZER) {
        const auto found = dead_.find(address);
        return found == dead_.end() ? std::nullopt : std::optional(*found->second);
    }
    Remains remains{nullptr, 0};
    if (IsReadable(address))
        std::memcpy(&remains, address, sizeof remains);
    return remains.state == Remains::kDead ? std::optional(*remains.object) : std::nullopt;
}

std::optional<DeadObject> Registry::Recall(std::uint64_t serial) {
    for (const Grave &grave : graves_)
        if (grave.object.serial == serial)
            return grave.object;
    return std::nullopt;
}

std::size_t Registry::LiveCount() { return count_; }

ledger::Mark Registry::MarkOf(const Object &object) {
    return {object.serial_, &object, object.TypeID(), object.retainCount_, object.made_};
}

} // namespace sim::macos
