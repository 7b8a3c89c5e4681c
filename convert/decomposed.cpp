#include "convert/decomposed.h"

OwnedCF<CFStringRef> Decomposed(CFStringRef name) {
    CFMutableStringRef copy = CFStringCreateMutableCopy(kCFAllocatorDefault, 0, name);
    if (!copy) {
        CFRetain(name);
        return OwnedCF<CFStringRef>::Adopt(name);
    }
    CFStringNormalize(copy, kCFStringNormalizationFormD);
    return OwnedCF<CFStringRef>::Adopt(copy);
}
