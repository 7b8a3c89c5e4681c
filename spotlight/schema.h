// What the schema knows about an attribute, by the attribute's name. Nothing here raises; an unknown or unconvertible
// name gives a null string or false. String and array results are +1.
#pragma once

#include "host/handles.h"

REALstringStruct *rbMDSchemaCopyDisplayNameForAttribute(REALstringStruct *name);
REALstringStruct *rbMDSchemaCopyDisplayDescriptionForAttribute(REALstringStruct *name);
/// Empty when the schema tells nothing; null only when the host cannot make arrays.
_REALarrayString *rbMDSchemaCopyAllAttributes();
/// "Boolean", "Number", "Date", "String", "UUID" or "Array"; null for any other type.
REALstringStruct *GetAttributeType(REALstringStruct *name);
bool GetAttributeMultiValued(REALstringStruct *name);
