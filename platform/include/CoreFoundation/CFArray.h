// Arrays. A mutable array's capacity is a hint: it grows past it.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const void *(*CFArrayRetainCallBack)(CFAllocatorRef allocator, const void *value);
typedef void (*CFArrayReleaseCallBack)(CFAllocatorRef allocator, const void *value);
typedef CFStringRef (*CFArrayCopyDescriptionCallBack)(const void *value);
typedef Boolean (*CFArrayEqualCallBack)(const void *value1, const void *value2);

typedef struct {
    CFIndex version;
    CFArrayRetainCallBack retain;
    CFArrayReleaseCallBack release;
    CFArrayCopyDescriptionCallBack copyDescription;
    CFArrayEqualCallBack equal;
} CFArrayCallBacks;

CF_EXPORT const CFArrayCallBacks kCFTypeArrayCallBacks;

typedef const struct __CFArray *CFArrayRef;
typedef struct __CFArray *CFMutableArrayRef;

CFTypeID CFArrayGetTypeID(void);
CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void **values, CFIndex count,
                         const CFArrayCallBacks *callBacks);
CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity, const CFArrayCallBacks *callBacks);
CFIndex CFArrayGetCount(CFArrayRef array);
/// Borrowed.
const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
void CFArrayAppendValue(CFMutableArrayRef array, const void *value);

CF_EXTERN_C_END
