// Folder items in both directions. On the way to the host a folder item is made from a parent folder and a name, or,
// where these cannot be had (the root of a volume has no parent to name, and the catalogue may give no answer), from
// the older file specification.
#include "convert/folder_items.h"

#include <algorithm>

#include <CoreServices/CoreServices.h>

#include "host/strings.h"

namespace {

/// The name in canonical decomposition (form D), in which HFS volumes store it; the name itself where no copy can be
/// made.
OwnedCF<CFStringRef> DecomposedFileName(CFStringRef name) {
    auto copy = AdoptCF(CFStringCreateMutableCopy(kCFAllocatorDefault, 0, name));
    if (!copy)
        return HoldCF(name);
    CFStringNormalize(copy.Get(), kCFStringNormalizationFormD);
    return copy;
}

/// Whether the record holds no more than it can, and no half of a surrogate pair: a URL cannot be made of one, and the
/// system crashes on the attempt.
bool IsWellFormedFileName(const HFSUniStr255 &name) {
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

OwnedCF<CFURLRef> URLOfExistingFolderItem(REALfolderItemStruct *item) {
    FSRef ref;
    if (!REALFSRefFromFolderItem(item, &ref, nullptr))
        return {};
    return AdoptCF(CFURLCreateFromFSRef(kCFAllocatorDefault, &ref));
}

OwnedCF<CFURLRef> URLOfNewFolderItem(REALfolderItemStruct *item) {
    FSRef parent;
    HFSUniStr255 name = {};
    if (!REALFSRefFromFolderItem(item, &parent, &name) || !IsWellFormedFileName(name))
        return {};
    const auto folder = AdoptCF(CFURLCreateFromFSRef(kCFAllocatorDefault, &parent));
    if (!folder || name.length == 0)
        return {};
    const auto length = static_cast<CFIndex>(name.length);
    const auto written = AdoptCF(CFStringCreateWithCharacters(kCFAllocatorDefault, name.unicode, length));
    if (!written)
        return {};
    const auto decomposed = DecomposedFileName(written.Get());
    return AdoptCF(CFURLCreateCopyAppendingPathComponent(kCFAllocatorDefault, folder.Get(), decomposed.Get(), false));
}

} // namespace

bool IsFolderItem(REALobjectStruct *object) {
    return REALLoadObjectMethod(object, "TrueItem(Index as integer) as Folderitem") != nullptr;
}

CFURLRef CreateCFURLfromFolderItem(REALfolderItemStruct *item) {
    if (!item)
        return nullptr;
    if (auto url = URLOfExistingFolderItem(item))
        return url.Give();
    return URLOfNewFolderItem(item).Give();
}

namespace {

OwnedHost<REALfolderItemStruct> FolderItemBySpecification(const FSRef &item) {
    FSSpec specification;
    if (FSGetCatalogInfo(&item, kFSCatInfoNone, nullptr, nullptr, &specification, nullptr) != noErr)
        return {};
    return AdoptHost(FolderItemFromFSSpec(&specification));
}

OwnedHost<REALfolderItemStruct> FolderItemOfExistingFile(const FSRef &item) {
    FSCatalogInfo info;
    FSRef parent;
    HFSUniStr255 name;
    if (FSGetCatalogInfo(&item, kFSCatInfoNodeID, &info, nullptr, nullptr, &parent) != noErr)
        return FolderItemBySpecification(item);
    // The root of a volume has no parent that could name it. What is no reference fails the check below, which leads to
    // the file specification.
    if (info.nodeID == fsRtDirID)
        parent = {};
    const OSErr nameError = FSGetCatalogInfo(&item, kFSCatInfoNone, nullptr, &name, nullptr, nullptr);
    const OSErr parentError = FSGetCatalogInfo(&parent, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
    if (nameError != noErr || parentError != noErr)
        return FolderItemBySpecification(item);
    return AdoptHost(REALFolderItemFromParentFSRef(&parent, &name));
}

/// Longer names are cut off at what the structure holds.
HFSUniStr255 StoredFileName(CFStringRef leaf) {
    const auto decomposed = DecomposedFileName(leaf);
    HFSUniStr255 name = {};
    const CFIndex length = std::clamp<CFIndex>(CFStringGetLength(decomposed.Get()), 0, 255);
    name.length = static_cast<UInt16>(length);
    CFStringGetCharacters(decomposed.Get(), CFRangeMake(0, length), name.unicode);
    return name;
}

OwnedHost<REALfolderItemStruct> FolderItemOfNewFile(CFURLRef url) {
    const auto folder = AdoptCF(CFURLCreateCopyDeletingLastPathComponent(kCFAllocatorDefault, url));
    FSRef parent;
    if (!folder || !CFURLGetFSRef(folder.Get(), &parent))
        return {};
    const auto leaf = AdoptCF(CFURLCopyLastPathComponent(url));
    if (!leaf)
        return {};
    const HFSUniStr255 name = StoredFileName(leaf.Get());
    return AdoptHost(REALFolderItemFromParentFSRef(&parent, &name));
}

OwnedObject AbsoluteURLText(CFURLRef url) {
    auto absolute = AdoptCF(CFURLCopyAbsoluteURL(url));
    if (!absolute)
        return {};
    const auto text = AdoptHost(CFString2RBString(CFURLGetString(absolute.Get())));
    Release(absolute);
    return AdoptHost(text ? StringToVariant(text.Get()) : nullptr);
}

} // namespace

OwnedObject FolderItemOrText(CFURLRef url) {
    FSRef item;
    auto folderItem = CFURLGetFSRef(url, &item) ? FolderItemOfExistingFile(item) : FolderItemOfNewFile(url);
    if (folderItem)
        return folderItem;
    return AbsoluteURLText(url);
}
