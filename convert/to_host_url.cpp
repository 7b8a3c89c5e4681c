// URLs to folder items. The host makes a folder item from a parent folder and a name, or, where these cannot be had
// (the root of a volume has no parent to name, and the catalogue may give no answer), from the older file
// specification.
#include <algorithm>

#include <CoreServices/CoreServices.h>

#include "convert/decomposed.h"
#include "convert/to_host_values.h"
#include "host/services.h"
#include "host/strings.h"

namespace {

REALfolderItemStruct *FolderItemBySpecification(const FSRef &item) {
    FSSpec specification;
    if (FSGetCatalogInfo(&item, kFSCatInfoNone, nullptr, nullptr, &specification, nullptr) != noErr)
        return nullptr;
    return FolderItemFromFSSpec(&specification);
}

REALfolderItemStruct *FolderItemOfExistingFile(const FSRef &item) {
    FSCatalogInfo info;
    FSRef parent;
    HFSUniStr255 name;
    if (FSGetCatalogInfo(&item, kFSCatInfoNodeID, &info, nullptr, nullptr, &parent) != noErr)
        return FolderItemBySpecification(item);
    if (info.nodeID == fsRtDirID)
        parent = {};
    const OSErr nameError = FSGetCatalogInfo(&item, kFSCatInfoNone, nullptr, &name, nullptr, nullptr);
    const OSErr parentError = FSGetCatalogInfo(&parent, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
    if (nameError != noErr || parentError != noErr)
        return FolderItemBySpecification(item);
    return REALFolderItemFromParentFSRef(&parent, &name);
}

/// Longer names are cut off at what the structure holds.
HFSUniStr255 StoredName(CFStringRef leaf) {
    const auto decomposed = Decomposed(leaf);
    HFSUniStr255 name = {};
    const CFIndex length = std::clamp<CFIndex>(CFStringGetLength(decomposed.Get()), 0, 255);
    name.length = static_cast<UInt16>(length);
    CFStringGetCharacters(decomposed.Get(), CFRangeMake(0, length), name.unicode);
    return name;
}

REALfolderItemStruct *FolderItemOfNewFile(CFURLRef url) {
    const auto folder = OwnedCF<CFURLRef>::Adopt(CFURLCreateCopyDeletingLastPathComponent(kCFAllocatorDefault, url));
    FSRef parent;
    if (!folder || !CFURLGetFSRef(folder.Get(), &parent))
        return nullptr;
    const auto leaf = OwnedCF<CFStringRef>::Adopt(CFURLCopyLastPathComponent(url));
    if (!leaf)
        return nullptr;
    const HFSUniStr255 name = StoredName(leaf.Get());
    return REALFolderItemFromParentFSRef(&parent, &name);
}

REALobjectStruct *AbsoluteText(CFURLRef url) {
    const auto absolute = OwnedCF<CFURLRef>::Adopt(CFURLCopyAbsoluteURL(url));
    if (!absolute)
        return nullptr;
    const auto text = OwnedString::Adopt(CFString2RBString(CFURLGetString(absolute.Get())));
    return text ? StringToVariant(text.Get()) : nullptr;
}

} // namespace

REALobjectStruct *FolderItemOrText(CFTypeRef value) {
    const auto url = static_cast<CFURLRef>(value);
    FSRef item;
    REALfolderItemStruct *folderItem =
        CFURLGetFSRef(url, &item) ? FolderItemOfExistingFile(item) : FolderItemOfNewFile(url);
    return folderItem ? folderItem : AbsoluteText(url);
}
