#include "plugin/load_sort_functions.h"

#include <CoreServices/CoreServices.h>

#include "host/owned.h"
#include "host/services.h"
#include "spotlight/sort_functions.h"

constinit CFBundleRef CoreServicesFramework = nullptr;

namespace {

/// The number with which the system has always been asked. Its headers call it kOnAppropriateDisk; their kOnSystemDisk
/// is another.
constexpr FSVolumeRefNum kFolderDomain = -32767;

/// +1, or null when any step fails.
CFBundleRef LoadCoreServices() {
    FSRef folder;
    if (FSFindFolder(kFolderDomain, kFrameworksFolderType, true, &folder) != noErr)
        return nullptr;
    const auto folderURL = OwnedCF<CFURLRef>::Adopt(CFURLCreateFromFSRef(kCFAllocatorSystemDefault, &folder));
    if (!folderURL)
        return nullptr;
    const auto frameworkURL = OwnedCF<CFURLRef>::Adopt(CFURLCreateCopyAppendingPathComponent(
        kCFAllocatorSystemDefault, folderURL.Get(), CFSTR("CoreServices.framework"), false));
    if (!frameworkURL)
        return nullptr;
    auto bundle = OwnedCF<CFBundleRef>::Adopt(CFBundleCreate(kCFAllocatorSystemDefault, frameworkURL.Get()));
    return bundle && CFBundleLoadExecutable(bundle.Get()) ? bundle.Give() : nullptr;
}

template <class Function> void LookUp(Function &function, CFStringRef name) {
    function = reinterpret_cast<Function>(CFBundleGetFunctionPointerForName(CoreServicesFramework, name));
}

} // namespace

void LoadSortFunctions() {
    if (!REALinRuntime())
        return;
    CoreServicesFramework = LoadCoreServices();
    if (!CoreServicesFramework)
        return;
    LookUp(myMDQueryGetSortOptionFlagsForAttribute, CFSTR("MDQueryGetSortOptionFlagsForAttribute"));
    LookUp(myMDQuerySetSortOptionFlagsForAttribute, CFSTR("MDQuerySetSortOptionFlagsForAttribute"));
    LookUp(myMDQuerySetSortOrder, CFSTR("MDQuerySetSortOrder"));
}
