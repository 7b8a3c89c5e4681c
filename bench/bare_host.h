// The cheapest host there can be: services that do next to nothing, so that what is measured is the plugin. It is given
// to the product's own code as its resolver.
#pragma once

#include "host/handles.h"

namespace bench {

/// Serves every service that the benchmarks need, from now on.
void UseBareHost();

/// A host string of 21 ASCII characters; it belongs to nobody.
REALstringStruct *SampleString();
/// An array whose element functions count and forget.
_REALarray *SampleArray();

// The services themselves, for floors that call them without the plugin.
REALstringStruct *BuildString(const void *bytes, int32_t length);
void SetStringEncoding(REALstringStruct *string, uint32_t encoding);
uint32_t GetStringEncoding(REALstringStruct *string);
void LockString(REALstringStruct *string);
void UnlockString(REALstringStruct *string);
REALobjectStruct *IntegerToVariant(int32_t value);
REALobjectStruct *NewInstance(const char *className);
void UnlockObject(REALobjectStruct *object);
_REALarray *CreateArray(int32_t elementType, int32_t upperBound);
void InsertObject(_REALarray *array, int32_t index, REALobjectStruct *object);

} // namespace bench
