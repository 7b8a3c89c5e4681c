#include "convert/folder_items.h"

#include <CoreServices/CoreServices.h>

#include "convert/decomposed.h"
#include "host/owned.h"
#include "host/services.h"

namespace {

CFURLRef URLOfExistingItem(REALfolderItemStruct *item) {
    FSRef ref;
    return REALFSRefFromFolderItem(item, &ref, nullptr) ? CFURLCreateFromFSRef(kCFAllocatorDefault, &ref) : nullptr;
}

CFURLRef URLOfNewItem(REALfolderItemStruct *item) {
    FSRef parent;
    HFSUniStr255 name = {};
    if (!REALFSRefFromFolderItem(item, &parent, &name))
        return nullptr;
    const auto folder = OwnedCF<CFURLRef>::Adopt(CFURLCreateFromFSRef(kCFAllocatorDefault, &parent));
    constexpr UInt16 kLongestName = 255;
    if (!folder || name.length == 0 || name.length > kLongestName)
        return nullptr;
    const auto length = static_cast<CFIndex>(name.length);
    const auto written =
        OwnedCF<CFStringRef>::Adopt(CFStringCreateWithCharacters(kCFAllocatorDefault, name.unicode, length));
    if (!written)
        return nullptr;
    const auto decomposed = Decomposed(written.Get());
    return CFURLCreateCopyAppendingPathComponent(kCFAllocatorDefault, folder.Get(), decomposed.Get(), false);
}

} // namespace

CFURLRef CreateCFURLfromFolderItem(REALfolderItemStruct *item) {
    if (!item)
        return nullptr;
    if (CFURLRef url = URLOfExistingItem(item))
        return url;
    return URLOfNewItem(item);
}
