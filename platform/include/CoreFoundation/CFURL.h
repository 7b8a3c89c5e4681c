// URLs and their way to and from file system references.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

struct FSRef;
typedef const struct __CFURL *CFURLRef;
typedef enum { kCFURLPOSIXPathStyle = 0, kCFURLHFSPathStyle = 1 } CFURLPathStyle;

CFTypeID CFURLGetTypeID(void);
CFURLRef CFURLCreateWithString(CFAllocatorRef allocator, CFStringRef string, CFURLRef base);
CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path, CFURLPathStyle style,
                                       Boolean isDirectory);
CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const struct FSRef *ref);
/// True only when the URL names an item that exists.
Boolean CFURLGetFSRef(CFURLRef url, struct FSRef *ref);
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url, CFStringRef component,
                                               Boolean isDirectory);
CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator, CFURLRef url);
/// Percent escapes are removed.
CFStringRef CFURLCopyLastPathComponent(CFURLRef url);
CFURLRef CFURLCopyAbsoluteURL(CFURLRef url);
/// Borrowed.
CFStringRef CFURLGetString(CFURLRef url);

CF_EXTERN_C_END
