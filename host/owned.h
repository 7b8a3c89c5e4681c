// One holder for the three kinds of reference the plugin owns: Core Foundation objects, host strings and host objects.
// Taking a +1 and giving it away are visible words. A bare handle is borrowed. The one exception are the results of
// functions whose shapes the host, the system or the interface fix, and of those that pass such a result straight on:
// where they hand over a +1 they say so, and whoever keeps one adopts it on the line of the call.
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
    Owned(Owned &&other) noexcept : reference_(other.Give()) {}
    /// Holds the same reference as one of a more general type.
    template <class Other> Owned(Owned<Other, release> &&other) noexcept : reference_(other.Give()) {}
    Owned &operator=(Owned &&) = delete;
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

/// Gives up what the holders own now and in this order; an exception of the host comes through. What they still own at
/// the end of their scope goes the other way round, and what the host throws then is dropped. Loops over elements do
/// the former: it needs no call of a function that catches.
template <class... Holders> void Release(Holders &...holders) { (holders.Release(), ...); }

template <class Reference> using OwnedCF = Owned<Reference, CFRelease>;
using OwnedString = Owned<REALstringStruct *, REALUnlockString>;
template <class Handle> using OwnedHost = Owned<Handle *, REALUnlockObject>;
using OwnedObject = OwnedHost<REALobjectStruct>;

// Take over a +1 reference; null is allowed.
template <class Reference> OwnedCF<Reference> AdoptCF(Reference reference) {
    return OwnedCF<Reference>::Adopt(reference);
}
inline OwnedString AdoptHost(REALstringStruct *string) { return OwnedString::Adopt(string); }
template <class Handle> OwnedHost<Handle> AdoptHost(Handle *object) { return OwnedHost<Handle>::Adopt(object); }

/// A reference of our own on a Core Foundation object that is not null.
template <class Reference> OwnedCF<Reference> HoldCF(Reference reference) {
    CFRetain(reference);
    return AdoptCF(reference);
}

// A reference of our own on something of the host's. A host that cannot add one gives none, so that none is given up.
inline OwnedString Hold(REALstringStruct *string) {
    const auto lock = string ? REALLockString.Find() : nullptr;
    if (!lock)
        return {};
    lock(string);
    return AdoptHost(string);
}
inline OwnedObject Hold(REALobjectStruct *object) {
    const auto lock = object ? REALLockObject.Find() : nullptr;
    if (!lock)
        return {};
    lock(object);
    return AdoptHost(object);
}
