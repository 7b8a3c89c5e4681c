// What every reference of the stand-in frameworks points at: a polymorphic object with a retain count, listed in the
// ledger (CoreFoundation/ledger.h) with where it was made. Also the way from a reference to its object, which
// recognises the constant strings that a compiler lays down, and stops with a message on null, on an object that is
// dead already and on what never was an object.
//
// Nothing is locked: programs use the stand-ins from one thread at a time. Only run loops and the updates of a query
// may be reached from elsewhere, as their headers say.
//
// A reference is the address of the object, and the object's first word its virtual table. Derived classes must
// therefore inherit from Object first.
#pragma once

#include "simulator/macos/control/stop.h"
#include "simulator/macos/control/trace.h"

#include <CoreFoundation/CFBase.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace sim::macos {

/// The run-time identifier of a type; asked twice for one name it answers the same number. 0 is no type.
CFTypeID RegisterType(std::string_view name);
/// The name a type was registered with.
std::string TypeName(CFTypeID type);

class Object {
public:
    /// For objects that nobody can free: not in the ledger, and retain and release leave them as they are.
    struct Immortal {};

    /// Counted: the maker owns the one reference that a new object has.
    Object();
    constexpr explicit Object(Immortal) : retainCount_(kImmortalCount) {}
    Object(const Object &) = delete;
    Object &operator=(const Object &) = delete;
    virtual ~Object();

    virtual CFTypeID TypeID() const = 0;
    /// Called only with an object of the same type.
    virtual bool EqualTo(const Object &other) const;
    /// Equal objects hash alike.
    virtual CFHashCode Hash() const;
    /// What it holds, in one short line; the type's name is not repeated.
    virtual std::string Description() const;

    void Retain();
    /// Destroys the object when the last reference is given up.
    void Release();
    CFIndex RetainCount() const { return retainCount_; }
    bool IsImmortal() const { return retainCount_ == kImmortalCount; }

    /// The object as the reference type of its C interface.
    template <class Ref> Ref As() const {
        return static_cast<Ref>(const_cast<void *>(static_cast<const void *>(this)));
    }

private:
    friend class Registry;
    friend Object &ObjectOf(CFTypeRef cf, const char *caller);

    static constexpr CFIndex kImmortalCount = 0x7fffffff;
    static constexpr std::uint32_t kAlive = 0x6576696c;
    static void Destroy(Object *object);
    static void Bury(Object *object);

    std::uint32_t state_ = kAlive; // the second word, where a reference is recognised by
    CFIndex retainCount_;
    Object *previous_ = nullptr;
    Object *next_ = nullptr;
    std::uint64_t serial_ = 0;
    Trace made_;
};

/// Whether there can be an object: not null, not a small number, aligned, and not memory that AddressSanitizer knows to
/// be freed.
bool IsReadable(CFTypeRef cf);

/// True for a string object laid down by a compiler. It lives for ever.
bool IsConstantString(CFTypeRef cf);

/// The object of a reference that is neither null nor a constant string. Stops when it is not a live object.
Object &ObjectOf(CFTypeRef cf, const char *caller = __builtin_FUNCTION());

/// The object of a reference when it is of class T, else null (for constant strings and null too).
template <class T> T *Cast(CFTypeRef cf, const char *caller = __builtin_FUNCTION()) {
    return cf && !IsConstantString(cf) ? dynamic_cast<T *>(&ObjectOf(cf, caller)) : nullptr;
}

[[noreturn]] void StopForWrongType(CFTypeRef cf, const char *caller);

/// The object of a reference that must be of class T: stops otherwise, naming the function that was called with it.
template <class T> T &Expect(CFTypeRef cf, const char *caller = __builtin_FUNCTION()) {
    if (cf && IsConstantString(cf))
        StopForWrongType(cf, caller);
    T *object = dynamic_cast<T *>(&ObjectOf(cf, caller));
    if (!object)
        StopForWrongType(cf, caller);
    return *object;
}

/// "CFString "abc"": what a message calls the object of a reference. Constant strings included.
std::string Describe(CFTypeRef cf);

} // namespace sim::macos
