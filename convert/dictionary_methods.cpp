#include "convert/dictionary_methods.h"

#include "host/services.h"

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
