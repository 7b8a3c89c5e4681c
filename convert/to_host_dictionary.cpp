// Core Foundation dictionaries to host dictionaries, pair by pair.
#include "convert/dictionary_methods.h"
#include "convert/to_host.h"
#include "convert/to_host_values.h"
#include "host/owned.h"

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
