// The base types of Core Foundation as a 32-bit Intel program sees them, the polymorphic calls, and the availability
// marks that the other headers of this folder use. Integer widths are those of the platform: CFIndex and the 32-bit
// UInt types are long types.
#pragma once

#include <stddef.h>
#include <stdint.h>

#if defined(__cplusplus)
#define CF_EXTERN_C_BEGIN extern "C" {
#define CF_EXTERN_C_END }
#define CF_EXPORT extern "C"
#else
#define CF_EXTERN_C_BEGIN
#define CF_EXTERN_C_END
#define CF_EXPORT extern
#endif

/// Marks a symbol that is younger than the oldest supported system (10.6): its address is null where the running system
/// lacks it.
#if defined(__APPLE__)
#define PLATFORM_SINCE_10_7 __attribute__((weak_import))
#else
#define PLATFORM_SINCE_10_7 __attribute__((weak))
#endif

CF_EXTERN_C_BEGIN

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef signed char SInt8;
typedef unsigned short UInt16;
typedef signed short SInt16;
typedef unsigned long UInt32;
typedef signed long SInt32;
typedef unsigned long long UInt64;
typedef signed long long SInt64;
typedef UInt16 UniChar;
typedef unsigned long UniCharCount;
typedef SInt16 OSErr;
typedef SInt32 OSStatus;
typedef UInt32 OSType;
typedef UInt32 FourCharCode;
typedef UInt32 OptionBits;
typedef UInt32 ItemCount;

typedef signed long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef unsigned long CFHashCode;

typedef const void *CFTypeRef;
typedef const struct __CFString *CFStringRef;
typedef struct __CFString *CFMutableStringRef;
typedef const struct __CFAllocator *CFAllocatorRef;

typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    CFRange range = {location, length};
    return range;
}

typedef enum { kCFCompareLessThan = -1, kCFCompareEqualTo = 0, kCFCompareGreaterThan = 1 } CFComparisonResult;

enum { kCFNotFound = -1 };

/// A variable whose value is null: "use the current default".
CF_EXPORT const CFAllocatorRef kCFAllocatorDefault;
CF_EXPORT const CFAllocatorRef kCFAllocatorSystemDefault;

typedef const struct __CFNull *CFNullRef;
CFTypeID CFNullGetTypeID(void);
CF_EXPORT const CFNullRef kCFNull;

CFTypeID CFGetTypeID(CFTypeRef cf);
/// Returns its argument. Null is not accepted.
CFTypeRef CFRetain(CFTypeRef cf);
/// Null is not accepted.
void CFRelease(CFTypeRef cf);
CFIndex CFGetRetainCount(CFTypeRef cf);
Boolean CFEqual(CFTypeRef cf1, CFTypeRef cf2);
CFHashCode CFHash(CFTypeRef cf);

CF_EXTERN_C_END
