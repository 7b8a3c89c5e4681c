// The list of live objects and the memory of dead ones.
#include "simulator/macos/CoreFoundation/registry.h"

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
    std::lock_guard lock(mutex_);
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
    std::lock_guard lock(mutex_);
    if (object.previous_)
        object.previous_->next_ = object.next_;
    else
        first_ = object.next_;
    if (object.next_)
        object.next_->previous_ = object.previous_;
    --count_;
}

void Registry::Remember(void *memory, DeadObject object) {
    std::lock_guard lock(mutex_);
    dead_.insert_or_assign(memory, std::move(object));
    burials_.push_back(memory);
    if (SIMULATOR_ADDRESS_SANITIZER)
        ::operator delete(memory);
    if (burials_.size() <= kRemembered)
        return;
    void *oldest = burials_.front();
    burials_.pop_front();
    dead_.erase(oldest);
    if (!SIMULATOR_ADDRESS_SANITIZER)
        ::operator delete(oldest);
}

std::optional<DeadObject> Registry::Recall(CFTypeRef address) {
    std::lock_guard lock(mutex_);
    auto found = dead_.find(address);
    if (found == dead_.end())
        return std::nullopt;
    return found->second;
}

std::size_t Registry::LiveCount() {
    std::lock_guard lock(mutex_);
    return count_;
}

std::vector<ledger::Entry> Registry::LiveObjects() {
    std::lock_guard lock(mutex_);
    std::vector<ledger::Entry> entries;
    entries.reserve(count_);
    for (Object *object = first_; object; object = object->next_)
        entries.push_back({object->serial_, object, TypeName(object->TypeID()), object->Description(),
                           object->retainCount_, object->made_});
    return entries;
}

} // namespace sim::macos
