// One holder for the three kinds of reference the plugin owns: Core Foundation objects, host strings and host objects.
// Taking a +1 and giving it away are visible words. A bare handle is borrowed, but for the +1 results of functions that
// say so, which are adopted on the line that calls them.
#pragma once

#include <concepts>
#include <utility>

#include "host/services.h"

/// Gives a reference up at the end of a scope, which may end because the host threw: what it throws now is dropped. Out
/// of line, so that the many ends of scopes stay small.
template <auto &release, class Reference> [[gnu::noinline]] void Drop(Reference reference) noexcept {
    try {
        release(reference);
    } catch (...) {
    }
}
/// Core Foundation throws nothing, which its declarations do not say.
template <auto &release, class Reference>
requires std::same_as<decltype(release), decltype(CFRelease) &>
void Drop(Reference reference) noexcept { reinterpret_cast<void (*)(CFTypeRef) noexcept>(CFRelease)(reference); }

/// Owns one reference, or null, and gives it up with `release` at the end of its scope.
template <class Reference, auto &release> class [[nodiscard]] Owned {
public:
    constexpr Owned() = default;
    Owned(Owned &&other) noexcept : reference_(std::exchange(other.reference_, nullptr)) {}
    Owned &operator=(Owned &&other) noexcept {
        std::swap(reference_, other.reference_);
        return *this;
    }
    ~Owned() {
        if (reference_)
            Drop<release>(reference_);
    }

    /// Takes over a +1 reference; null is allowed.
    static Owned Adopt(Reference reference) {
        Owned owned;
        owned.reference_ = reference;
        return owned;
    }

    /// Lends the reference.
    Reference Get() const { return reference_; }
    /// Hands the +1 to the caller.
    [[nodiscard]] Reference Give() { return std::exchange(reference_, nullptr); }
    /// Gives the reference up now. What the host throws comes through.
    void Release() {
        if (Reference reference = Give())
            release(reference);
    }
    explicit operator bool() const { return reference_ != nullptr; }

private:
    Reference reference_ = nullptr;
};

/// Gives up what the holders own, in this order.
template <class... Holders> void Release(Holders &...holders) { (holders.Release(), ...); }

template <class Reference> using OwnedCF = Owned<Reference, CFRelease>;
using OwnedString = Owned<REALstringStruct *, REALUnlockString>;
template <class Handle> using OwnedHost = Owned<Handle *, REALUnlockObject>;
using OwnedObject = OwnedHost<REALobjectStruct>;

// A reference of our own on something borrowed. A host that cannot add one gives none, so that none is given up.
inline OwnedString Hold(REALstringStruct *string) {
    if (!string || !REALLockString)
        return {};
    REALLockString(string);
    return OwnedString::Adopt(string);
}
inline OwnedObject Hold(REALobjectStruct *object) {
    if (!object || !REALLockObject)
        return {};
    REALLockObject(object);
    return OwnedObject::Adopt(object);
}
