// The callbacks of collections of objects. A null value stops, as it crashes on the real system.
#include "simulator/macos/CoreFoundation/collection_callbacks.h"

#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/CoreFoundation/text.h"

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFDictionary.h>

namespace sim::macos {

const void *RetainValue(CFAllocatorRef, const void *value) {
    if (!value)
        Stop("a collection of objects was given null as a key or value");
    return CFRetain(value);
}

void ReleaseValue(CFAllocatorRef, const void *value) { CFRelease(value); }

CFStringRef CopyValueDescription(const void *value) { return MakeString(Describe(value)).Give(); }

Boolean ValuesAreEqual(const void *value1, const void *value2) { return CFEqual(value1, value2); }

CFHashCode HashOfValue(const void *value) { return CFHash(value); }

} // namespace sim::macos

using namespace sim::macos;

const CFArrayCallBacks kCFTypeArrayCallBacks = {0, RetainValue, ReleaseValue, CopyValueDescription, ValuesAreEqual};
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {
    0, RetainValue, ReleaseValue, CopyValueDescription, ValuesAreEqual, HashOfValue};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0, RetainValue, ReleaseValue, CopyValueDescription,
                                                                    ValuesAreEqual};
