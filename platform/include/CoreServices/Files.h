// The File Manager. Its structures are packed to two bytes.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

#pragma pack(push, 2)

typedef SInt16 FSVolumeRefNum;
typedef UInt32 FSCatalogInfoBitmap;

typedef struct UTCDateTime {
    UInt16 highSeconds;
    UInt32 lowSeconds;
    UInt16 fraction;
} UTCDateTime;

/// Opaque: it names an existing item and stays valid when the item is renamed or moved on its volume.
typedef struct FSRef {
    UInt8 hidden[80];
} FSRef;

typedef struct HFSUniStr255 {
    UInt16 length;
    UniChar unicode[255];
} HFSUniStr255;

typedef struct FSPermissionInfo {
    UInt32 userID;
    UInt32 groupID;
    UInt8 reserved1;
    UInt8 userAccess;
    UInt16 mode;
    void *fileSec;
} FSPermissionInfo;

typedef struct FSCatalogInfo {
    UInt16 nodeFlags;
    FSVolumeRefNum volume;
    UInt32 parentDirID;
    UInt32 nodeID;
    UInt8 sharingFlags;
    UInt8 userPrivileges;
    UInt8 reserved1;
    UInt8 reserved2;
    UTCDateTime createDate;
    UTCDateTime contentModDate;
    UTCDateTime attributeModDate;
    UTCDateTime accessDate;
    UTCDateTime backupDate;
    FSPermissionInfo permissions;
    UInt8 finderInfo[16];
    UInt8 extFinderInfo[16];
    UInt64 dataLogicalSize;
    UInt64 dataPhysicalSize;
    UInt64 rsrcLogicalSize;
    UInt64 rsrcPhysicalSize;
    UInt32 valence;
    UInt32 textEncodingHint;
} FSCatalogInfo;

/// The name is a Pascal string: a length byte and at most 63 bytes of text.
typedef struct FSSpec {
    FSVolumeRefNum vRefNum;
    SInt32 parID;
    UInt8 name[64];
} FSSpec;
typedef FSSpec *FSSpecPtr;

#pragma pack(pop)

enum { kFSCatInfoNone = 0, kFSCatInfoNodeID = 0x10 };
enum { fsRtParID = 1, fsRtDirID = 2 };
enum { noErr = 0, nsvErr = -35, fnfErr = -43, paramErr = -50, dirNFErr = -120 };

/// Every output may be null.
OSErr FSGetCatalogInfo(const FSRef *ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo *catalogInfo,
                       HFSUniStr255 *outName, FSSpecPtr fsSpec, FSRef *parentRef);

CF_EXTERN_C_END
