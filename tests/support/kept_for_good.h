// A host keeps what it is handed for good, and the plugin frees none of it.
#pragma once

// Defined by the leak checker when the program is built with it.
extern "C" [[gnu::weak]] void __lsan_disable();
extern "C" [[gnu::weak]] void __lsan_enable();

namespace tests {

/// What is allocated while it lives is no leak.
class KeptForGood {
public:
    KeptForGood() {
        if (__lsan_disable)
            __lsan_disable();
    }
    KeptForGood(const KeptForGood &) = delete;
    KeptForGood &operator=(const KeptForGood &) = delete;
    ~KeptForGood() {
        if (__lsan_enable)
            __lsan_enable();
    }
};

} // namespace tests
