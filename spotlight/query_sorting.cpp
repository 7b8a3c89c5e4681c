#include "spotlight/query_sorting.h"

#include "convert/arrays.h"
#include "host/owned.h"
#include "host/services.h"
#include "host/strings.h"
#include "spotlight/query.h"

constinit decltype(&MDQueryGetSortOptionFlagsForAttribute) myMDQueryGetSortOptionFlagsForAttribute = nullptr;
constinit decltype(&MDQuerySetSortOptionFlagsForAttribute) myMDQuerySetSortOptionFlagsForAttribute = nullptr;
constinit decltype(&MDQuerySetSortOrder) myMDQuerySetSortOrder = nullptr;
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
    const auto folderURL = AdoptCF(CFURLCreateFromFSRef(kCFAllocatorSystemDefault, &folder));
    if (!folderURL)
        return nullptr;
    const auto frameworkURL = AdoptCF(CFURLCreateCopyAppendingPathComponent(kCFAllocatorSystemDefault, folderURL.Get(),
                                                                            CFSTR("CoreServices.framework"), false));
    if (!frameworkURL)
        return nullptr;
    auto bundle = AdoptCF(CFBundleCreate(kCFAllocatorSystemDefault, frameworkURL.Get()));
    return bundle && CFBundleLoadExecutable(bundle.Get()) ? bundle.Give() : nullptr;
}

template <class Function> void LookUpSortFunction(Function &function, CFStringRef name) {
    function = reinterpret_cast<Function>(CFBundleGetFunctionPointerForName(CoreServicesFramework, name));
}

} // namespace

void LoadSortFunctions() {
    if (!REALinRuntime())
        return;
    CoreServicesFramework = LoadCoreServices();
    if (!CoreServicesFramework)
        return;
    LookUpSortFunction(myMDQueryGetSortOptionFlagsForAttribute, CFSTR("MDQueryGetSortOptionFlagsForAttribute"));
    LookUpSortFunction(myMDQuerySetSortOptionFlagsForAttribute, CFSTR("MDQuerySetSortOptionFlagsForAttribute"));
    LookUpSortFunction(myMDQuerySetSortOrder, CFSTR("MDQuerySetSortOrder"));
}

int32_t rbMDQueryGetSortOptionFlagsForAttribute(REALobjectStruct *self, REALstringStruct *fieldName) {
    const MDQueryRef query = RequireQuery(self);
    if (!query || !myMDQueryGetSortOptionFlagsForAttribute)
        return 0;
    const auto name = AdoptCF(RBString2CFString(fieldName));
    return name ? static_cast<int32_t>(myMDQueryGetSortOptionFlagsForAttribute(query, name.Get())) : 0;
}

bool rbMDQuerySetSortOptionFlagsForAttribute(REALobjectStruct *self, REALstringStruct *fieldName, uint32_t flags) {
    const MDQueryRef query = RequireQuery(self);
    // Deliberate: the setter's presence is told by the getter's.
    if (!query || !myMDQueryGetSortOptionFlagsForAttribute)
        return false;
    const auto name = AdoptCF(RBString2CFString(fieldName));
    return name && myMDQuerySetSortOptionFlagsForAttribute(query, name.Get(), flags);
}

bool rbMDQuerySetSortOrder(REALobjectStruct *self, _REALarrayString *sortingAttributes) {
    const MDQueryRef query = RequireQuery(self);
    if (!query || !myMDQuerySetSortOrder)
        return false;
    const auto names = AdoptCF(NewCFStringArray(sortingAttributes));
    return names && myMDQuerySetSortOrder(query, names.Get());
}
