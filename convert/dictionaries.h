// Dictionaries in both directions, and the methods of the host's "Dictionary", looked up once per dictionary rather
// than once per entry: a cache of one. It is keyed by the handle alone, so whoever has filled or read a dictionary to
// its end resets it; the next dictionary may live at the same address.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/owned.h"

/// Null when no dictionary can be created. A key or value without a Core Foundation form becomes kCFNull; an
/// entry without key is left out.
OwnedCF<CFMutableDictionaryRef> CopyDictionary(REALobjectStruct *dictionary);

/// Stores one pair in the host dictionary that `context` is. The shape is that of a dictionary applier.
void MyCFDictionaryApplierFunction(const void *key, const void *value, void *context);

/// A new host dictionary with all pairs; null when the application has no "Dictionary".
OwnedObject NewHostDictionary(CFDictionaryRef dictionary);

using DictionarySetter = void (*)(REALobjectStruct *dictionary, REALobjectStruct *key, REALobjectStruct *value);
/// The value is +1, or null.
using DictionaryGetter = REALobjectStruct *(*)(REALobjectStruct *dictionary, REALobjectStruct *key);
/// The key is +1, or null.
using DictionaryKeyGetter = REALobjectStruct *(*)(REALobjectStruct *dictionary, int32_t index);

/// The dictionary that the three methods belong to; null when nothing is cached. No reference is held on it.
extern REALobjectStruct *LastDictionary;
extern DictionarySetter LastDictionarySetter;
extern DictionaryGetter LastDictionaryGetter;
extern DictionaryKeyGetter LastDictionaryKeyGetter;

/// Makes the cache hold this dictionary's methods. The three are always loaded as a group; one that the host lacks
/// stays null until the group is loaded again.
void LoadDictionaryMethods(REALobjectStruct *dictionary);

/// Empties the cache at the end of its scope.
class DictionaryMethodsScope {
public:
    DictionaryMethodsScope() = default;
    DictionaryMethodsScope(const DictionaryMethodsScope &) = delete;
    DictionaryMethodsScope &operator=(const DictionaryMethodsScope &) = delete;
    ~DictionaryMethodsScope() { LastDictionary = nullptr; }
};
