// What the host hands out: opaque 32-bit handles. Arrays, folder items and dates are host objects and convert to the
// object handle by themselves. Nobody looks inside, except where plugin data lies in instances (host/instance_data.h),
// and where strings and arrays are used in place on hosts old enough to have a known layout.
#pragma once

#include <cstdint>

struct REALobjectStruct {
    REALobjectStruct() = delete;
};
struct REALfolderItemStruct : REALobjectStruct {};
struct _REALdate : REALobjectStruct {};
struct _REALarray : REALobjectStruct {};
struct _REALarrayString : _REALarray {};
struct _REALarrayFolderitem : _REALarray {};
struct _REALarrayObject : _REALarray {};

struct REALstringStruct;
struct REALclassStruct;
struct REALmoduleStruct;
struct REALstringDataStruct;

/// A host boolean: only the low byte of the result register or argument word counts, and any bit of it makes it true.
using HostBoolean = unsigned char;

/// A host or plugin function whose shape its declaration tells.
using HostCode = void (*)();
