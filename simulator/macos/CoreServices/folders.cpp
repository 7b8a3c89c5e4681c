// Well-known folders. Only one is known: the system's frameworks, the same on the start-up disk, on "the appropriate
// disk" and in the system domain. It is there always, so asking for its creation changes nothing.
#include "simulator/macos/CoreFoundation/file_system.h"
#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/control/environment.h"
#include "simulator/macos/control/faults.h"

#include <CoreServices/Folders.h>

using namespace sim::macos;

namespace {

FallibleCall findFolder("FSFindFolder");

} // namespace

OSErr FSFindFolder(FSVolumeRefNum vRefNum, OSType folderType, Boolean, FSRef *foundRef) {
    if (!foundRef)
        return paramErr;
    if (findFolder.Fails())
        return kMemoryFullError;
    if (environment::FindFolderResult() != noErr)
        return environment::FindFolderResult();
    if (vRefNum != kOnSystemDisk && vRefNum != kOnAppropriateDisk && vRefNum != kSystemDomain)
        return nsvErr;
    if (folderType != kFrameworksFolderType)
        return fnfErr;
    *foundRef = ReferenceTo(std::string(environment::kFrameworksFolder));
    return noErr;
}
