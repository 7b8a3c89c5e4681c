// What several groups of operations need.
#pragma once

#include "bench/measure.h"
#include "simulator/macos/CoreFoundation/ref.h"

#include <string>

namespace bench {

template <class Reference> using Ref = sim::macos::CFRef<Reference>;

/// A new object of the plugin's, as a program made it: queries and items with what their constructors would put there.
inline Object *ObjectWith(const char *className, const void *handle) {
    Object *object = NewInstance(className);
    object->data[0] = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(handle));
    return object;
}

/// Text of so many units, half of which are no ASCII where that is asked for.
inline std::string Text(int units, bool isASCII) {
    std::string text;
    for (int i = 0; i < units; i++)
        text += isASCII || i % 2 == 0 ? "t" : "\xC3\xA9";
    return text;
}

inline Ref<CFStringRef> TextOf(const std::string &text) {
    return Ref<CFStringRef>::Adopt(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(text.data()),
                                static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
}

inline Ref<CFNumberRef> NumberOf(int32_t value) {
    return Ref<CFNumberRef>::Adopt(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &value));
}

} // namespace bench
