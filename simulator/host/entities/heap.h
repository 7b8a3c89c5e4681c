// Everything that a host counts references of, and the memory by which the plugin knows it. A handle is the address of
// a small block whose contents depend on the host's age; what it stands for is an Entity beside it, so that nothing the
// plugin writes can confuse the host. The heap knows every live handle and remembers dead ones: a dead or invented
// handle stops the host with the thing's story. Dead blocks are filled, poisoned and kept from reuse, unless reuse is
// wanted.
#pragma once

#include "simulator/host/entities/places.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

namespace sim::host {

struct Entity {
    using Visitor = std::function<void(Entity &)>;

    Entity() = default;
    Entity(const Entity &) = delete;
    Entity &operator=(const Entity &) = delete;
    virtual ~Entity() = default;

    /// "string", "variant", "string()", "MDItemQTX"...
    virtual std::string ClassName() const = 0;
    /// What VarType answers for it.
    virtual int32_t TypeCode() const = 0;
    /// Visits everything that it holds a reference of, as often as it holds one.
    virtual void VisitHeld(const Visitor &) const {}
    /// Its last reference is gone: lets go of what it holds.
    virtual void Die() {}

    /// "MDItemQTX #12".
    std::string Describe() const { return ClassName() + " #" + std::to_string(number); }

    class Heap *heap = nullptr;
    std::byte *address = nullptr;
    size_t size = 0;
    int32_t references = 0;
    /// How many of them belong to Objects of the program.
    int32_t programReferences = 0;
    /// How many the last audit found somebody to hold.
    int32_t holdersFound = 0;
    /// How many references too many or, negative, too few were last told of.
    int32_t differenceTold = 0;
    uint32_t number = 0;
    Place madeAt;
    /// Its neighbours among the living.
    Entity *older = nullptr;
    Entity *newer = nullptr;
};

class Heap {
public:
    explicit Heap(bool reuseAddresses) : reuseAddresses_(reuseAddresses) {}
    Heap(const Heap &) = delete;
    Heap &operator=(const Heap &) = delete;
    ~Heap();

    /// A new thing with one reference and a zeroed block of `size` bytes.
    template <class T, class... Arguments> T &Make(size_t size, Arguments &&...arguments) {
        auto entity = std::make_unique<T>(std::forward<Arguments>(arguments)...);
        T &made = *entity;
        Add(std::move(entity), size);
        return made;
    }

    void Lock(Entity &entity);
    void Unlock(Entity &entity);

    /// The live thing at a handle; a dead or invented handle stops the host. `what` names the argument.
    Entity &At(const void *handle, const char *what);
    /// The same for a thing of one kind.
    template <class T> T &Require(const void *handle, const char *what) {
        if (auto *entity = dynamic_cast<T *>(&At(handle, what)))
            return *entity;
        StopForKind(handle, what);
    }
    /// Null for a null handle.
    template <class T> T *RequireOrNull(const void *handle, const char *what) {
        return handle ? &Require<T>(handle, what) : nullptr;
    }
    bool IsLive(const void *handle) const;

    /// The oldest first. Things may come and go meanwhile.
    void VisitLive(const Entity::Visitor &visitor) const;
    /// The same where nothing comes or goes.
    template <class Visitor> void VisitAllThatLive(const Visitor &visitor) const {
        for (Entity *entity = oldest_; entity; entity = entity->newer)
            visitor(*entity);
    }
    /// Gives the places that the dead left for others back to the system.
    void FreeUnused();

    Places places;

private:
    /// What is at an address: something that lives, or what is remembered of the last that did.
    struct Plot {
        std::unique_ptr<Entity> living;
        std::string description;
        Place madeAt;
        Place diedAt;
    };
    struct DeadBlock {
        std::byte *address;
        size_t size;
    };

    struct Death {
        Entity *entity;
        Place place;
    };

    void Add(std::unique_ptr<Entity> entity, size_t size);
    void Bury(Entity &entity, const Place &diedAt);
    std::byte *Allocate(size_t size);
    void Retire(std::byte *address, size_t size);
    /// Gives the place of something dead back, and forgets what was there.
    void Free(std::byte *address, size_t size);
    [[noreturn]] void StopForKind(const void *handle, const char *what);

    bool reuseAddresses_;
    uint32_t lastNumber_ = 0;
    std::vector<Death> deaths_;
    int dyingDepth_ = 0;
    std::unordered_map<const void *, Plot> plots_;
    Entity *oldest_ = nullptr;
    Entity *newest_ = nullptr;
    std::deque<DeadBlock> quarantine_;
    std::map<size_t, std::vector<std::byte *>> reusable_;
};

/// Marks bytes that the plugin has no business with: any instrumented access to them ends the run. They must be
/// unmarked before the host itself touches them. Both do nothing without AddressSanitizer.
void ForbidAccess(const void *address, size_t size);
void AllowAccess(const void *address, size_t size);

/// An address that faults when read, in instrumented code or not.
void *TrapAddress();

} // namespace sim::host
