#include "simulator/host/entities/heap.h"

#include "simulator/host/ground/stop.h"

#include <cstdlib>
#include <cstring>
#include <sys/mman.h>

// Defined by AddressSanitizer when the program is built with it.
extern "C" [[gnu::weak]] void __asan_poison_memory_region(const volatile void *address, size_t size);
extern "C" [[gnu::weak]] void __asan_unpoison_memory_region(const volatile void *address, size_t size);

namespace sim::host {

namespace {

/// So many dead blocks are kept, with their stories, before the oldest is given back to the allocator: some 4 MB.
constexpr size_t kQuarantineLength = 8192;
constexpr int kDeadByte = 0xDD;
constexpr int kDeepestDeath = 64;

class Deeper {
public:
    explicit Deeper(int &depth) : depth_(depth) { ++depth_; }
    Deeper(const Deeper &) = delete;
    Deeper &operator=(const Deeper &) = delete;
    ~Deeper() { --depth_; }

private:
    int &depth_;
};

std::string HandleText(const void *handle) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", static_cast<unsigned>(reinterpret_cast<uintptr_t>(handle)));
    return text;
}

} // namespace

void ForbidAccess(const void *address, size_t size) {
    if (__asan_poison_memory_region)
        __asan_poison_memory_region(address, size);
}

void AllowAccess(const void *address, size_t size) {
    if (__asan_unpoison_memory_region)
        __asan_unpoison_memory_region(address, size);
}

void *TrapAddress() {
    static void *page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return page;
}

Heap::~Heap() {
    while (oldest_) {
        Entity *const next = oldest_->newer;
        Free(oldest_->address, oldest_->size);
        oldest_ = next;
    }
    for (const DeadBlock &block : quarantine_)
        Free(block.address, block.size);
    FreeUnused();
}

void Heap::Free(std::byte *address, size_t size) {
    plots_.erase(address);
    AllowAccess(address, size);
    std::free(address);
}

void Heap::FreeUnused() {
    for (const auto &[size, addresses] : reusable_)
        for (std::byte *address : addresses)
            Free(address, size);
    reusable_.clear();
}

std::byte *Heap::Allocate(size_t size) {
    if (auto reusable = reusable_.find(size); reusable != reusable_.end() && !reusable->second.empty()) {
        std::byte *address = reusable->second.back();
        reusable->second.pop_back();
        AllowAccess(address, size);
        return address;
    }
    return static_cast<std::byte *>(std::malloc(size));
}

void Heap::Retire(std::byte *address, size_t size) {
    AllowAccess(address, size);
    std::memset(address, kDeadByte, size);
    ForbidAccess(address, size);
    if (reuseAddresses_) {
        reusable_[size].push_back(address);
        return;
    }
    quarantine_.push_back({address, size});
    if (quarantine_.size() <= kQuarantineLength)
        return;
    DeadBlock oldest = quarantine_.front();
    quarantine_.pop_front();
    Free(oldest.address, oldest.size);
}

void Heap::Add(std::unique_ptr<Entity> entity, size_t size) {
    entity->heap = this;
    entity->address = Allocate(size);
    entity->size = size;
    entity->references = 1;
    entity->number = ++lastNumber_;
    entity->madeAt = places.Now();
    std::memset(entity->address, 0, size);
    entity->older = newest_;
    (newest_ ? newest_->newer : oldest_) = entity.get();
    newest_ = entity.get();
    plots_[entity->address].living = std::move(entity);
}

void Heap::Lock(Entity &entity) {
    if (entity.references == 0)
        Stop(entity.Describe() + " was locked while it dies, by " + places.Now().Describe());
    ++entity.references;
}

void Heap::Unlock(Entity &entity) {
    if (entity.references == 0)
        Stop(entity.Describe() + " was unlocked while it dies, by " + places.Now().Describe());
    if (--entity.references > 0)
        return;
    deaths_.push_back({&entity, places.Now()});
    // What dies inside a death dies at once, as in a real host, but for the depth of the stack: beyond the limit it
    // waits until there is room again.
    if (dyingDepth_ == kDeepestDeath)
        return;
    Deeper deeper(dyingDepth_);
    while (!deaths_.empty()) {
        Death death = deaths_.back();
        deaths_.pop_back();
        Bury(*death.entity, death.place);
    }
}

void Heap::Bury(Entity &entity, const Place &diedAt) {
    entity.Die();
    (entity.older ? entity.older->newer : oldest_) = entity.newer;
    (entity.newer ? entity.newer->older : newest_) = entity.older;
    Plot &plot = plots_.at(entity.address);
    const std::unique_ptr<Entity> last = std::move(plot.living);
    plot.description = last->Describe();
    plot.madeAt = last->madeAt;
    plot.diedAt = diedAt;
    Retire(last->address, last->size);
}

bool Heap::IsLive(const void *handle) const {
    const auto found = plots_.find(handle);
    return found != plots_.end() && found->second.living;
}

Entity &Heap::At(const void *handle, const char *what) {
    const auto found = plots_.find(handle);
    if (found != plots_.end() && found->second.living)
        return *found->second.living;
    std::string reason = places.Now().Describe() + " was given " + HandleText(handle) + " as " + what + ": ";
    if (found != plots_.end())
        Stop(reason + found->second.description + " is gone; it was made by " + found->second.madeAt.Describe() +
             " and died in " + found->second.diedAt.Describe());
    Stop(reason + (handle ? "nothing of the host was ever there" : "it must not be null"));
}

void Heap::StopForKind(const void *handle, const char *what) {
    Stop(places.Now().Describe() + " was given " + At(handle, what).Describe() + " as " + what);
}

void Heap::VisitLive(const Entity::Visitor &visitor) const {
    std::vector<Entity *> entities;
    VisitAllThatLive([&](Entity &entity) { entities.push_back(&entity); });
    for (Entity *entity : entities)
        visitor(*entity);
}

} // namespace sim::host
