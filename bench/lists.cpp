// Dictionaries and arrays of every size, and arrays in arrays, in both directions.
#include "bench/value_operations.h"

namespace bench {

namespace {

Ref<CFMutableDictionaryRef> DictionaryOf(int size) {
    auto dictionary = Ref<CFMutableDictionaryRef>::Adopt(CFDictionaryCreateMutable(
        kCFAllocatorDefault, size, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    for (int i = 0; i < size; i++)
        CFDictionarySetValue(dictionary.Get(), NumberOf(i).Get(), kCFBooleanTrue);
    return dictionary;
}

Object *HostDictionaryOf(int size) {
    Object *dictionary = NewInstance("Dictionary");
    dictionary->integer = size;
    return dictionary;
}

/// So many times the value.
Ref<CFMutableArrayRef> ArrayOf(int size, CFTypeRef value) {
    auto array = Ref<CFMutableArrayRef>::Adopt(CFArrayCreateMutable(kCFAllocatorDefault, size, &kCFTypeArrayCallBacks));
    for (int i = 0; i < size; i++)
        CFArrayAppendValue(array.Get(), value);
    return array;
}

/// So many times the object, which is taken over.
Object *HostArrayOf(int size, Object *value) {
    Object *array = CreateArray(kObjectElements, size - 1);
    for (int i = 0; i < size; i++) {
        array->elements[i] = value;
        LockObject(value);
    }
    UnlockObject(value);
    return array;
}

} // namespace

void MeasureLists(const Settings &settings, const Plugin &plugin) {
    const Measure measure(settings, "lists", plugin.HostAge());
    if (!measure.IsWanted())
        return;
    for (const int size : {10, 1000, 100'000}) {
        if (!measure.IsWanted(size))
            continue;
        MeasureToHost(measure, plugin, {"dictionary", size}, DictionaryOf(size).Get());
        MeasureFromHost(measure, plugin, {"dictionary", size}, HostDictionaryOf(size));
        MeasureToHost(measure, plugin, {"array", size}, ArrayOf(size, NumberOf(1).Get()).Get());
        MeasureFromHost(measure, plugin, {"array", size}, HostArrayOf(size, IntegerToVariant(1)));
    }
    // Arrays of arrays of ten.
    for (const int size : {10, 1000, 10'000}) {
        if (!measure.IsWanted(size))
            continue;
        MeasureToHost(measure, plugin, {"nested array", size},
                      ArrayOf(size / 10, ArrayOf(10, NumberOf(1).Get()).Get()).Get());
        MeasureFromHost(measure, plugin, {"nested array", size},
                        HostArrayOf(size / 10, HostArrayOf(10, IntegerToVariant(1))));
    }
}

} // namespace bench
