// The cache of a dictionary's methods, which no host can see: what it holds during a fill, and that it is empty
// afterwards, whatever the fill came to.
#include <doctest/doctest.h>

#include "convert/dictionaries.h"
#include "convert/values.h"
#include "host/owned.h"
#include "tests/whitebox/fake_resolver.h"
#include "tests/whitebox/restored.h"

#include <string>
#include <vector>

using whitebox::FakeResolver;
using whitebox::Restored;

namespace {

constexpr const char *kSetter = "Value(key As Variant, Assigns _value As Variant)";
constexpr const char *kGetter = "Value(key As Variant) As Variant";
constexpr const char *kKeyGetter = "Key(index As Integer) As Variant";

/// One dictionary and one variant that stands for every other value; neither is ever looked into.
REALobjectStruct *const kDictionary = reinterpret_cast<REALobjectStruct *>(uintptr_t{0x1000});
REALobjectStruct *const kVariant = reinterpret_cast<REALobjectStruct *>(uintptr_t{0x2000});

std::vector<std::string> loaded;
bool hasMethods = true;
int stored = 0;

void Store(REALobjectStruct *dictionary, REALobjectStruct *key, REALobjectStruct *value) {
    CHECK(dictionary == kDictionary);
    CHECK(key == kVariant);
    CHECK(value == kVariant);
    CHECK(LastDictionary == kDictionary);
    stored++;
}
REALobjectStruct *NewInstance(const char *className) {
    return std::string(className) == "Dictionary" ? kDictionary : nullptr;
}
HostCode LoadMethod(REALobjectStruct *object, const char *declaration) {
    CHECK(object == kDictionary);
    loaded.push_back(declaration);
    return hasMethods && std::string(declaration) == kSetter ? reinterpret_cast<HostCode>(Store) : nullptr;
}
REALobjectStruct *MakeVariant(HostBoolean) { return kVariant; }

/// A host that knows dictionaries and booleans.
struct DictionaryHost {
    DictionaryHost() {
        resolver.Offer("PluginNewInstance", NewInstance);
        resolver.Offer("REALLoadObjectMethod", LoadMethod);
        resolver.Offer("BooleanToVariant", MakeVariant);
        loaded.clear();
        hasMethods = true;
        stored = 0;
    }

    FakeResolver resolver;
    Restored<decltype(REALnewInstance)> newInstance{REALnewInstance};
    Restored<decltype(REALLoadObjectMethod)> loadObjectMethod{REALLoadObjectMethod};
    Restored<decltype(BooleanToVariant)> booleanToVariant{BooleanToVariant};
    Restored<decltype(REALUnlockObject)> unlockObject{REALUnlockObject};
};

OwnedCF<CFMutableDictionaryRef> TwoPairs() {
    auto pairs = OwnedCF<CFMutableDictionaryRef>::Adopt(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    CFDictionarySetValue(pairs.Get(), kCFBooleanTrue, kCFBooleanFalse);
    CFDictionarySetValue(pairs.Get(), kCFBooleanFalse, kCFBooleanTrue);
    return pairs;
}

const std::vector<std::string> kGroup = {kSetter, kGetter, kKeyGetter};

} // namespace

TEST_CASE("The dictionary cache is empty before and after every fill") {
    const DictionaryHost host;
    const auto pairs = TwoPairs();
    CHECK(LastDictionary == nullptr);
    for (int fill = 1; fill <= 2; fill++) {
        CHECK(NewHostDictionary(pairs.Get()).Give() == kDictionary);
        CHECK(LastDictionary == nullptr);
        CHECK(stored == 2 * fill);
        CHECK(loaded.size() == kGroup.size() * static_cast<size_t>(fill));
    }
}

TEST_CASE("The dictionary cache is empty after a fill whose methods were not found, and they were asked for once") {
    const DictionaryHost host;
    hasMethods = false;
    CHECK(NewHostDictionary(TwoPairs().Get()).Give() == kDictionary);
    CHECK(LastDictionary == nullptr);
    CHECK((LastDictionarySetter == nullptr));
    CHECK(loaded == kGroup);
}

TEST_CASE("The applier does nothing for a null key or a null dictionary, not even a conversion") {
    const DictionaryHost host;
    MyCFDictionaryApplierFunction(nullptr, kCFBooleanTrue, kDictionary);
    MyCFDictionaryApplierFunction(kCFBooleanTrue, kCFBooleanTrue, nullptr);
    CHECK(host.resolver.Questions() == 0);
    CHECK(LastDictionary == nullptr);
}

TEST_CASE("The applier leaves its dictionary's methods in the cache, for whoever fills to clear") {
    const DictionaryHost host;
    MyCFDictionaryApplierFunction(kCFBooleanTrue, kCFBooleanTrue, kDictionary);
    MyCFDictionaryApplierFunction(kCFBooleanFalse, kCFBooleanTrue, kDictionary);
    CHECK(LastDictionary == kDictionary);
    CHECK((LastDictionarySetter == Store));
    CHECK(loaded == kGroup);
    CHECK(stored == 2);
    LastDictionary = nullptr;
}
