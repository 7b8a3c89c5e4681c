#include "convert/dictionaries.h"

#include <algorithm>

#include "convert/values.h"

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

OwnedObject DictionaryKeyAt(REALobjectStruct *dictionary, int32_t index) {
    LoadDictionaryMethods(dictionary);
    return AdoptHost(LastDictionaryKeyGetter ? LastDictionaryKeyGetter(dictionary, index) : nullptr);
}

OwnedObject DictionaryValueOf(REALobjectStruct *dictionary, const OwnedObject &key) {
    LoadDictionaryMethods(dictionary);
    return AdoptHost(LastDictionaryGetter ? LastDictionaryGetter(dictionary, key.Get()) : nullptr);
}

OwnedCF<CFTypeRef> CopyEntryOrNull(const OwnedObject &value) {
    auto converted = AdoptCF(CopyVariantAsCFType(value.Get()));
    return converted ? std::move(converted) : HoldCF<CFTypeRef>(kCFNull);
}

} // namespace

OwnedCF<CFMutableDictionaryRef> CopyDictionary(REALobjectStruct *dictionary) {
    int32_t count = 0;
    REALGetPropValueInteger(dictionary, "Count", &count);
    count = std::max<int32_t>(count, 0);
    auto result = AdoptCF(CFDictionaryCreateMutable(kCFAllocatorDefault, count, &kCFTypeDictionaryKeyCallBacks,
                                                    &kCFTypeDictionaryValueCallBacks));
    if (!result)
        return {};

    const DictionaryMethodsScope methods;
    for (int32_t i = 0; i < count; i++) {
        // Both reads look at the cache: it was emptied if the entry before held a dictionary, and by whatever the host
        // ran in between.
        auto key = DictionaryKeyAt(dictionary, i);
        auto value = DictionaryValueOf(dictionary, key);
        if (key) {
            const auto convertedKey = CopyEntryOrNull(key);
            const auto convertedValue = CopyEntryOrNull(value);
            CFDictionarySetValue(result.Get(), convertedKey.Get(), convertedValue.Get());
        }
        Release(key, value);
    }
    return result;
}

void MyCFDictionaryApplierFunction(const void *key, const void *value, void *context) {
    const auto dictionary = static_cast<REALobjectStruct *>(context);
    if (!key || !dictionary)
        return;
    // Both are converted, the value first, before the cache is looked at: converting a nested dictionary leaves the
    // cache empty.
    auto hostValue = AdoptHost(GetCFTypeAsVariant(value));
    auto hostKey = AdoptHost(GetCFTypeAsVariant(key));
    LoadDictionaryMethods(dictionary);
    if (LastDictionarySetter)
        LastDictionarySetter(dictionary, hostKey.Get(), hostValue.Get());
    Release(hostKey, hostValue);
}

OwnedObject NewHostDictionary(CFDictionaryRef dictionary) {
    auto host = AdoptHost(REALnewInstance("Dictionary"));
    if (!host)
        return {};
    const DictionaryMethodsScope methods;
    CFDictionaryApplyFunction(dictionary, MyCFDictionaryApplierFunction, host.Get());
    return host;
}
