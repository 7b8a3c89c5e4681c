#include "convert/dictionaries.h"

#include <algorithm>

#include "convert/from_host.h"
#include "convert/to_host.h"
#include "host/owned.h"

constinit REALobjectStruct *LastDictionary = nullptr;
constinit DictionarySetter LastDictionarySetter = nullptr;
constinit DictionaryGetter LastDictionaryGetter = nullptr;
constinit DictionaryKeyGetter LastDictionaryKeyGetter = nullptr;

void LoadDictionaryMethods(REALobjectStruct *dictionary) {
    if (dictionary == LastDictionary)
        return;
    LastDictionary = dictionary;
    const auto load = [dictionary]<class Method>(Method &method, const char *declaration) {
        method = reinterpret_cast<Method>(REALLoadObjectMethod(dictionary, declaration));
    };
    load(LastDictionarySetter, "Value(key As Variant, Assigns _value As Variant)");
    load(LastDictionaryGetter, "Value(key As Variant) As Variant");
    load(LastDictionaryKeyGetter, "Key(index As Integer) As Variant");
}

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

void MyCFDictionaryApplierFunction(const void *key, const void *value, void *context) {
    const auto dictionary = static_cast<REALobjectStruct *>(context);
    if (!key || !dictionary)
        return;
    // Both are converted before the cache is looked at: converting a nested dictionary leaves the cache empty. The
    // value is converted first, and released last.
    const auto hostValue = OwnedObject::Adopt(GetCFTypeAsVariant(value));
    const auto hostKey = OwnedObject::Adopt(GetCFTypeAsVariant(key));
    LoadDictionaryMethods(dictionary);
    if (LastDictionarySetter)
        LastDictionarySetter(dictionary, hostKey.Get(), hostValue.Get());
}

REALobjectStruct *NewHostDictionary(CFDictionaryRef dictionary) {
    auto host = OwnedObject::Adopt(REALnewInstance("Dictionary"));
    if (!host)
        return nullptr;
    const DictionaryMethodsScope methods;
    CFDictionaryApplyFunction(dictionary, MyCFDictionaryApplierFunction, host.Get());
    return host.Give();
}

REALobjectStruct *HostDictionary(CFTypeRef value) { return NewHostDictionary(static_cast<CFDictionaryRef>(value)); }
