#include "convert/folder_items.h"

#include <CoreServices/CoreServices.h>

#include "convert/decomposed.h"
#include "host/owned.h"
#include "host/services.h"

namespace {

/// Whether the record holds no more than it can, and no half of a surrogate pair: a URL cannot be made of one, and the
/// system crashes on the attempt.
bool IsWellFormed(const HFSUniStr255 &name) {
    constexpr UInt16 kLongestName = 255;
    if (name.length > kLongestName)
        return false;
    const auto isHigh = [](UniChar unit) { return (unit & 0xFC00) == 0xD800; };
    const auto isLow = [](UniChar unit) { return (unit & 0xFC00) == 0xDC00; };
    bool isPairOpen = false;
    for (UInt16 i = 0; i < name.length; i++) {
        if (isLow(name.unicode[i]) != isPairOpen)
            return false;
        isPairOpen = isHigh(name.unicode[i]);
    }
    return !isPairOpen;
}

CFURLRef URLOfExistingItem(REALfolderItemStruct *item) {
    FSRef ref;
    return REALFSRefFromFolderItem(item, &ref, nullptr) ? CFURLCreateFromFSRef(kCFAllocatorDefault, &ref) : nullptr;
}

CFURLRef URLOfNewItem(REALfolderItemStruct *item) {
    FSRef parent;
    HFSUniStr255 name = {};
    if (!REALFSRefFromFolderItem(item, &parent, &name) || !IsWellFormed(name))
        return nullptr;
    const auto folder = OwnedCF<CFURLRef>::Adopt(CFURLCreateFromFSRef(kCFAllocatorDefault, &parent));
    if (!folder || name.length == 0)
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
