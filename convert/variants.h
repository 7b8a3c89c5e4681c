// Reading a variant's type and its scalar value: through the host's conversion services, or through the variant's
// properties where the host lacks them.
#pragma once

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

/// kVariantNil when the host has no means to tell.
int32_t GetVariantType(REALobjectStruct *variant);

// The values are 0, and the string null, when the host has no means to read them.
/// +1 or null.
[[nodiscard]] REALstringStruct *GetVariantString(REALobjectStruct *variant);
int32_t GetVariantInt32(REALobjectStruct *variant);
int64_t GetVariantInt64(REALobjectStruct *variant);
float GetVariantSingle(REALobjectStruct *variant);
double GetVariantDouble(REALobjectStruct *variant);
