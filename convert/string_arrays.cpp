#include "convert/string_arrays.h"

#include "host/arrays.h"
#include "host/strings.h"

CFMutableArrayRef NewCFStringArray(_REALarrayString *array) {
    if (!array)
        return nullptr;
    const int32_t upperBound = UpperBoundOf(array);
    auto strings = OwnedCF<CFMutableArrayRef>::Adopt(
        CFArrayCreateMutable(kCFAllocatorDefault, CFIndex{upperBound} + 2, &kCFTypeArrayCallBacks));
    if (!strings)
        return nullptr;
    for (int32_t i = 0; i <= upperBound; i++) {
        const auto string = OwnedString::Adopt(REALGetArrayString(array, i));
        const auto converted = OwnedCF<CFStringRef>::Adopt(RBString2CFString(string.Get()));
        CFArrayAppendValue(strings.Get(), converted ? converted.Get() : CFSTR(""));
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
        const auto string = OwnedString::Adopt(CFString2RBString(element));
        REALInsertArrayValueString(array, position++, string.Get());
    }
}
