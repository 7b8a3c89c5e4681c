#include "convert/string_arrays.h"

#include "host/arrays.h"
#include "host/strings.h"

CFMutableArrayRef NewCFStringArray(_REALarrayString *array) {
    if (!array)
        return nullptr;
    const int32_t upperBound = UpperBoundOf(array);
    // The capacity is a hint; it has always been one more than the elements.
    auto strings = AdoptCF(CFArrayCreateMutable(kCFAllocatorDefault, CFIndex{upperBound} + 2, &kCFTypeArrayCallBacks));
    if (!strings)
        return nullptr;
    for (int32_t i = 0; i <= upperBound; i++) {
        auto string = AdoptHost(REALGetArrayString(array, i));
        auto text = TextOrEmpty(string.Get());
        CFArrayAppendValue(strings.Get(), text.Get());
        Release(text, string);
    }
    return strings.Give();
}

void AddStringArray(_REALarrayString *array, CFArrayRef strings) {
    const CFIndex count = CFArrayGetCount(strings);
    int32_t position = 0;
    for (CFIndex i = 0; i < count; i++) {
        const auto element = static_cast<CFStringRef>(CFArrayGetValueAtIndex(strings, i));
        if (!element)
            continue;
        const auto string = AdoptHost(CFString2RBString(element));
        REALInsertArrayValueString(array, position++, string.Get());
    }
}

_REALarrayString *WithStrings(OwnedHost<_REALarrayString> array, const OwnedCF<CFArrayRef> &strings) {
    if (strings)
        AddStringArray(array.Get(), strings.Get());
    return array.Give();
}
