// Well-known folders by domain and type.
#pragma once

#include <CoreServices/Files.h>

CF_EXTERN_C_BEGIN

enum { kOnSystemDisk = -32768L, kOnAppropriateDisk = -32767, kSystemDomain = -32766 };
enum { kFrameworksFolderType = 0x6672616D /* 'fram' */ };
enum { kCreateFolder = 1, kDontCreateFolder = 0 };

OSErr FSFindFolder(FSVolumeRefNum vRefNum, OSType folderType, Boolean createFolder, FSRef *foundRef);

CF_EXTERN_C_END
