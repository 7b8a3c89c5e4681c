// The callbacks of collections whose values are Core Foundation objects: retain, release, describe, compare and hash.
#pragma once

#include <CoreFoundation/CFBase.h>

namespace sim::macos {

const void *RetainValue(CFAllocatorRef allocator, const void *value);
void ReleaseValue(CFAllocatorRef allocator, const void *value);
CFStringRef CopyValueDescription(const void *value);
Boolean ValuesAreEqual(const void *value1, const void *value2);
CFHashCode HashOfValue(const void *value);

} // namespace sim::macos
