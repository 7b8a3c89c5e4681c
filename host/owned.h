// One holder for the three kinds of reference the plugin owns: Core Foundation objects, host strings and host objects.
// Taking a +1 and giving it away are visible words; a bare handle is always borrowed.
#pragma once

#include <utility>

#include "host/services.h"

/// Owns one reference, or null, and gives it up with Release at the end of its scope. Release may let an exception of
/// the host through.
template <class Reference, auto &Release> class [[nodiscard]] Owned {
public:
    constexpr Owned() = default;
    Owned(Owned &&other) noexcept : reference_(std::exchange(other.reference_, nullptr)) {}
    Owned &operator=(Owned &&other) {
        std::swap(reference_, other.reference_);
        return *this;
    }
    ~Owned() noexcept(false) {
        if (reference_)
            Release(reference_);
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
    explicit operator bool() const { return reference_ != nullptr; }

private:
    Reference reference_ = nullptr;
};

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
