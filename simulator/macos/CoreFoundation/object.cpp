// The life of an object, from its entry in the ledger to its grave, and how a reference is told from what is none.
#include "simulator/macos/CoreFoundation/object.h"

#include "simulator/macos/CoreFoundation/constant_string.h"
#include "simulator/macos/CoreFoundation/registry.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

extern "C" __attribute__((weak)) int __asan_address_is_poisoned(const volatile void *address);

namespace sim::macos {

namespace {

constexpr std::size_t kTypeBase = 1;
constexpr std::uint32_t kDying = 0x676e6964;

// Releasing a chain of objects recurses, as it does on the real system, but only this deep: what is deeper waits until
// the stack has unwound, so that no nesting exhausts it.
constexpr int kDeepestDestruction = 64;

// By identifier.
std::vector<std::string> &TypeNames() {
    static auto *names = new std::vector<std::string>;
    return *names;
}

struct Words {
    const void *first;
    std::uint32_t second;
};

// Copied, because the memory may hold an object, the remains of one, or anything else.
Words WordsOf(CFTypeRef cf) {
    Words words;
    std::memcpy(&words, cf, sizeof words);
    return words;
}

std::string Named(CFTypeID type, const std::string &description) {
    return TypeName(type) + (description.empty() ? "" : " " + description);
}

[[noreturn]] void StopForDead(CFTypeRef cf, const char *caller) {
    std::optional<DeadObject> dead = Registry::Instance().Recall(cf);
    if (!dead)
        Stop(std::string(caller) + " was given an object that was released long ago");
    Stop(std::string(caller) + " was given a dead object: " + Named(dead->type, dead->description) + ", made by " +
         ToText(dead->made) + ", released for the last time by " + ToText(dead->died));
}

} // namespace

CFTypeID RegisterType(std::string_view name) {
    std::vector<std::string> &names = TypeNames();
    const auto known = std::find(names.begin(), names.end(), name);
    const auto index = static_cast<CFTypeID>(known - names.begin());
    if (known == names.end())
        names.emplace_back(name);
    return index + kTypeBase;
}

std::string TypeName(CFTypeID type) {
    const std::size_t index = type - kTypeBase;
    return index < TypeNames().size() ? TypeNames()[index] : "no type";
}

Object::Object() : retainCount_(1), made_(TakeTrace()) { Registry::Instance().Add(*this); }

Object::~Object() {
    if (!IsImmortal())
        Registry::Instance().Remove(*this);
}

bool Object::EqualTo(const Object &other) const { return this == &other; }

CFHashCode Object::Hash() const { return reinterpret_cast<CFHashCode>(this) >> 4; }

std::string Object::Description() const { return {}; }

void Object::Retain() {
    if (!IsImmortal())
        ++retainCount_;
}

void Object::Release() {
    if (!IsImmortal() && --retainCount_ == 0)
        Destroy(this);
}

void Object::Destroy(Object *object) {
    static int depth = 0;
    static std::vector<Object *> *waiting = nullptr;
    object->state_ = kDying;
    if (depth == kDeepestDestruction) {
        if (!waiting)
            waiting = new std::vector<Object *>;
        waiting->push_back(object);
        return;
    }
    ++depth;
    Bury(object);
    --depth;
    while (depth == 0 && waiting) {
        std::vector<Object *> *next = std::exchange(waiting, nullptr);
        ++depth;
        for (Object *one : *next)
            Bury(one);
        --depth;
        delete next;
    }
}

void Object::Bury(Object *object) {
    if (Registry::Instance().IsUnseen(*object)) {
        delete object;
        return;
    }
    DeadObject dead{object->serial_, object->TypeID(), object->Description(), object->made_, TakeTrace()};
    void *memory = dynamic_cast<void *>(object);
    object->~Object();
    Registry::Instance().Remember(memory, std::move(dead));
}

bool IsReadable(CFTypeRef cf) {
    constexpr std::uintptr_t kFirstPage = 4096;
    const auto address = reinterpret_cast<std::uintptr_t>(cf);
    if (address < kFirstPage || address % alignof(Words) != 0)
        return false;
    return !__asan_address_is_poisoned || !__asan_address_is_poisoned(cf);
}

Object &ObjectOf(CFTypeRef cf, const char *caller) {
    if (!cf)
        Stop(std::string(caller) + " was given null");
    if (!IsReadable(cf)) {
        if (Registry::Instance().Recall(cf))
            StopForDead(cf, caller);
        Stop(std::string(caller) + " was given something that is no object");
    }
    const std::uint32_t state = WordsOf(cf).second;
    if (state == Remains::kDead)
        StopForDead(cf, caller);
    if (state == kDying)
        Stop(std::string(caller) + " was given an object that is being destroyed");
    if (state != Object::kAlive)
        Stop(std::string(caller) + " was given something that is no object");
    return *static_cast<Object *>(const_cast<void *>(cf));
}

void StopForWrongType(CFTypeRef cf, const char *caller) {
    Stop(std::string(caller) + " was given an object of the wrong type: " + Describe(cf));
}

std::string Describe(CFTypeRef cf) {
    if (IsConstantString(cf))
        return "CFString " + ConstantString::Of(cf).Description();
    const auto &object = *static_cast<const Object *>(cf);
    return Named(object.TypeID(), object.Description());
}

} // namespace sim::macos
