// What the schema knows about an attribute, by the attribute's name. Nothing here raises; an
// unknown or unconvertible name gives a null string, false or an empty array. Results are +1.
#pragma once

#include "host/handles.h"

REALstringStruct *rbMDSchemaCopyDisplayNameForAttribute(REALstringStruct *name);
REALstringStruct *rbMDSchemaCopyDisplayDescriptionForAttribute(REALstringStruct *name);
_REALarrayString *rbMDSchemaCopyAllAttributes();
/// "Boolean", "Number", "Date", "String", "UUID" or "Array"; null for any other type.
REALstringStruct *GetAttributeType(REALstringStruct *name);
bool GetAttributeMultiValued(REALstringStruct *name);
