// Strings. Lengths and positions count UTF-16 units.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef UInt32 CFStringEncoding;

enum {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingWindowsLatin1 = 0x0500,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingNextStepLatin = 0x0B01,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUnicode = 0x0100,
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingNonLossyASCII = 0x0BFF,
    kCFStringEncodingUTF16 = 0x0100,
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100,
    kCFStringEncodingUTF32 = 0x0c000100,
    kCFStringEncodingUTF32BE = 0x18000100,
    kCFStringEncodingUTF32LE = 0x1c000100
};
#define kCFStringEncodingInvalidId (0xffffffffU)

typedef CFOptionFlags CFStringCompareFlags;
enum {
    kCFCompareCaseInsensitive = 1,
    kCFCompareBackwards = 4,
    kCFCompareAnchored = 8,
    kCFCompareNonliteral = 16,
    kCFCompareLocalized = 32,
    kCFCompareNumerically = 64
};

typedef enum {
    kCFStringNormalizationFormD = 0,
    kCFStringNormalizationFormKD = 1,
    kCFStringNormalizationFormC = 2,
    kCFStringNormalizationFormKC = 3
} CFStringNormalizationForm;

/// A string object laid down at compile time: four words, of which the first is bound to this symbol.
#define CFSTR(text) ((CFStringRef)__builtin___CFStringMakeConstantString("" text ""))
CF_EXPORT int __CFConstantStringClassReference[];

CFTypeID CFStringGetTypeID(void);
/// With external representation a byte-order mark is consumed, and UTF-16 or UTF-32 without one is big-endian. Null for
/// bytes that are not well formed.
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8 *bytes, CFIndex byteCount,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation);
CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar *characters, CFIndex count);
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char *text, CFStringEncoding encoding);
/// A limit of 0 means none.
CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex limit, CFStringRef string);
CFIndex CFStringGetLength(CFStringRef string);
void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar *buffer);
/// The size counts the terminator. False when the text does not fit or cannot be converted.
Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex bufferSize, CFStringEncoding encoding);
CFComparisonResult CFStringCompare(CFStringRef string1, CFStringRef string2, CFStringCompareFlags options);
void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form);

CF_EXTERN_C_END
