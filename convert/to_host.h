// Core Foundation values to host values.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// A variant for scalars and strings, a host object for dates, folder items, arrays, dictionaries, memory blocks and
/// references without a natural host value: +1, or null for nil. The value is borrowed. Data that finds no memory
/// raises "OutOfMemoryException", a list whose host array shrinks meanwhile "OutOfBoundsException".
[[nodiscard]] REALobjectStruct *GetCFTypeAsVariant(CFTypeRef value);

/// Stores one pair in the host dictionary that `context` is. The shape is that of a dictionary applier.
void MyCFDictionaryApplierFunction(const void *key, const void *value, void *context);

/// A new host dictionary with all pairs, +1; null when the application has no "Dictionary".
[[nodiscard]] REALobjectStruct *NewHostDictionary(CFDictionaryRef dictionary);
