// Values of every kind, to the host and from it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "host/handles.h"

/// The host's codes for the type of a variant.
enum VariantType : int32_t {
    kVariantNil = 0,
    kVariantInt32 = 2,
    kVariantInt64 = 3,
    kVariantSingle = 4,
    kVariantDouble = 5,
    /// Read like a double.
    kVariantOtherDouble = 6,
    kVariantDate = 7,
    kVariantString = 8,
    kVariantObject = 9,
    kVariantBoolean = 11,
    kVariantColor = 16,
    /// Added to the code of its elements in the code of an array.
    kVariantArray = 4096,
};

/// A variant for scalars and strings, a host object for dates, folder items, arrays, dictionaries, memory blocks and
/// references without a natural host value: +1, or null for nil. The value is borrowed. Data that finds no memory
/// raises "OutOfMemoryException", a list whose host array shrinks meanwhile "OutOfBoundsException".
[[nodiscard]] REALobjectStruct *GetCFTypeAsVariant(CFTypeRef value);

/// +1; null for nil and for a value without a Core Foundation form. Raises nothing, except "OutOfBoundsException" for
/// an array that shrinks while it is read.
[[nodiscard]] CFTypeRef CopyVariantAsCFType(REALobjectStruct *value);
