#include "bench/floor_values.h"

namespace bench::floors {

AtHand atHand;
DictionaryMethods methods;

void DictionaryMethods::LoadFor(Object *dictionary) {
    if (of == dictionary)
        return;
    of = dictionary;
    const auto load = [dictionary]<class Method>(Method &method, const char *declaration) {
        method = reinterpret_cast<Method>(LoadObjectMethod(dictionary, declaration));
    };
    load(set, "Value(key As Variant, Assigns _value As Variant)");
    load(get, "Value(key As Variant) As Variant");
    load(key, "Key(index As Integer) As Variant");
}

} // namespace bench::floors
