// A holder for one reference, for C++ code inside the stand-ins and for tests. Taking a reference over, adding one and
// giving one away are always visible words.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <utility>

namespace sim::macos {

template <class Ref> class CFRef {
public:
    CFRef() = default;
    CFRef(CFRef &&other) noexcept : ref_(std::exchange(other.ref_, nullptr)) {}
    CFRef &operator=(CFRef &&other) noexcept {
        std::swap(ref_, other.ref_);
        return *this;
    }
    CFRef(const CFRef &) = delete;
    CFRef &operator=(const CFRef &) = delete;
    ~CFRef() {
        if (ref_)
            CFRelease(ref_);
    }

    /// Takes over a reference that the caller owns. Null is accepted.
    static CFRef Adopt(Ref ref) { return CFRef(ref); }
    /// Adds a reference of its own. Null is accepted.
    static CFRef Retain(Ref ref) {
        if (ref)
            CFRetain(ref);
        return CFRef(ref);
    }

    /// Borrowed.
    Ref Get() const { return ref_; }
    /// Hands the reference over to the caller.
    [[nodiscard]] Ref Give() { return std::exchange(ref_, nullptr); }
    CFRef Copy() const { return Retain(ref_); }
    explicit operator bool() const { return ref_ != nullptr; }

private:
    explicit CFRef(Ref ref) : ref_(ref) {}
    Ref ref_ = nullptr;
};

} // namespace sim::macos
