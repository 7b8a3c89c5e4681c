// The floor of every conversion: what must be called, in the order in which it must be called, from code that has every
// pointer at hand and holds nothing that could be dropped. Nothing here is safe against a host that lacks a service or
// throws; what is required of each conversion by name (a zeroed buffer, an element function asked for each element, the
// order of the tests for types, the tests for what came back null) is done.
#pragma once

#include "bench/bare_host.h"

#include <CoreServices/CoreServices.h>

namespace bench::floors {

/// The pointers and facts that a floor has at hand, set before anything is counted.
struct AtHand {
    Age age;
    const uint32_t *queryRecord;
    const uint32_t *itemRecord;
};
extern AtHand atHand;

inline void GiveUp(Object *object) {
    if (object)
        UnlockObject(object);
}

/// The elements of an array; null where the host must be asked.
inline Object **ElementsInPlace(Object *array) {
    return atHand.age == Age::kOld ? reinterpret_cast<Object **>(array->data[1]) : nullptr;
}

/// The functions of the dictionary that was looked at last: one inside another one makes them be loaded again.
struct DictionaryMethods {
    Object *of;
    void (*set)(Object *dictionary, Object *key, Object *value);
    Object *(*get)(Object *dictionary, Object *key);
    Object *(*key)(Object *dictionary, int32_t index);

    void LoadFor(Object *dictionary);
};
extern DictionaryMethods methods;

/// +1, or null.
String *StringOf(CFStringRef text);

/// +1. Old hosts are read in place when they have no CFString; new ones are then asked for length and bytes.
CFStringRef CopyText(String *string);

/// +1, or null.
Object *VariantOf(CFTypeRef value);

/// +1.
CFTypeRef CopyValue(Object *variant);

/// +1; null for no item.
Object *ItemObject(MDItemRef item);

/// Puts an element into an array, by the function that the host gives for it, if any.
void Insert(Object *array, int32_t index, Object *element);

/// +1. A null list gives an empty array.
Object *ItemArray(CFArrayRef items);

} // namespace bench::floors
