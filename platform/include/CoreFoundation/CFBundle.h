// Bundles and the functions of their executables.
#pragma once

#include <CoreFoundation/CFURL.h>

CF_EXTERN_C_BEGIN

typedef struct __CFBundle *CFBundleRef;

CFTypeID CFBundleGetTypeID(void);
CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url);
Boolean CFBundleLoadExecutable(CFBundleRef bundle);
/// Takes the name as C writes it, without the underscore. Null when the executable exports no such function.
void *CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef name);

CF_EXTERN_C_END
