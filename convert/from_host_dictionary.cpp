#include "convert/from_host_dictionary.h"

#include <algorithm>

#include "convert/dictionary_methods.h"
#include "convert/from_host.h"
#include "host/owned.h"

namespace {

OwnedObject KeyAt(REALobjectStruct *dictionary, int32_t index) {
    LoadDictionaryMethods(dictionary);
    return OwnedObject::Adopt(LastDictionaryKeyGetter ? LastDictionaryKeyGetter(dictionary, index) : nullptr);
}

OwnedObject ValueOf(REALobjectStruct *dictionary, const OwnedObject &key) {
    LoadDictionaryMethods(dictionary);
    return OwnedObject::Adopt(LastDictionaryGetter ? LastDictionaryGetter(dictionary, key.Get()) : nullptr);
}

OwnedCF<CFTypeRef> CopyOrNull(const OwnedObject &value) {
    CFTypeRef converted = CopyVariantAsCFType(value.Get());
    return OwnedCF<CFTypeRef>::Adopt(converted ? converted : CFRetain(kCFNull));
}

} // namespace

CFTypeRef CopyDictionary(REALobjectStruct *dictionary) {
    int32_t count = 0;
    REALGetPropValueInteger(dictionary, "Count", &count);
    count = std::max<int32_t>(count, 0);
    auto result = OwnedCF<CFMutableDictionaryRef>::Adopt(CFDictionaryCreateMutable(
        kCFAllocatorDefault, count, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    if (!result)
        return nullptr;

    const DictionaryMethodsScope methods;
    for (int32_t i = 0; i < count; i++) {
        // Both reads look at the cache: it was emptied if the entry before held a dictionary, and by whatever the host
        // ran in between. The key is released before the value.
        OwnedObject value;
        const auto key = KeyAt(dictionary, i);
        value = ValueOf(dictionary, key);
        if (!key)
            continue;
        const auto convertedKey = CopyOrNull(key);
        const auto convertedValue = CopyOrNull(value);
        CFDictionarySetValue(result.Get(), convertedKey.Get(), convertedValue.Get());
    }
    return result.Give();
}
