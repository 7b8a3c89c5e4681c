// The functions behind the declarations of the item class. Methods raise "NilObjectException" on an object without an
// item and return the neutral value of their result; string and object results are +1.
#pragma once

#include "host/handles.h"

/// Raises "NilObjectException" when the folder item is null, has no URL or leads to no item; the object then has none.
void rbMDItemCreate(REALobjectStruct *self, REALfolderItemStruct *path);
void MDItemDestructor(REALobjectStruct *self);

REALobjectStruct *rbMDItemCopyAttributes(REALobjectStruct *self, _REALarrayString *names);
REALobjectStruct *rbMDItemCopyAttribute(REALobjectStruct *self, REALstringStruct *name);
_REALarrayString *rbMDItemCopyAttributeNames(REALobjectStruct *self);

// These raise "RuntimeException" for an attribute of another type.
REALstringStruct *rbMDItemCopyAttributeString(REALobjectStruct *self, REALstringStruct *name);
bool rbMDItemCopyAttributeBoolean(REALobjectStruct *self, REALstringStruct *name);
double rbMDItemCopyAttributeDouble(REALobjectStruct *self, REALstringStruct *name);
_REALarrayString *rbMDItemCopyAttributeStringArray(REALobjectStruct *self, REALstringStruct *name);

// Computed properties. Without an item the three strings are silently empty; only the size raises.
REALstringStruct *querykMDItemDisplayName(REALobjectStruct *self, int32_t);
REALstringStruct *querykMDItemFSName(REALobjectStruct *self, int32_t);
REALstringStruct *querykMDItemPath(REALobjectStruct *self, int32_t);
/// Bytes.
int64_t querykMDItemFSSize(REALobjectStruct *self, int32_t);
