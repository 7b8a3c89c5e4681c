// The File Manager's catalogue: what FSGetCatalogInfo tells of an item. Of the catalogue's fields only the node ID is
// modelled. Names come decomposed, with a slash for each colon of the path, and cut at 255 units; a volume's root bears
// the volume's name.
#include "simulator/macos/CoreFoundation/file_system.h"
#include "simulator/macos/CoreFoundation/normalization.h"
#include "simulator/macos/CoreFoundation/string_encoding.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/control/environment.h"
#include "simulator/macos/control/faults.h"
#include "simulator/macos/control/stop.h"

#include <CoreServices/Files.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

using namespace sim::macos;

namespace {

FallibleCall getCatalogInfo("FSGetCatalogInfo");

std::u16string NameOf(const ReferencedItem &item) {
    if (item.isRootParent)
        return {};
    if (std::optional<environment::Volume> volume = environment::VolumeWithRoot(item.path))
        return volume->name;
    std::u16string name = Normalized(Utf16(LeafOf(item.path)), kCFStringNormalizationFormD);
    std::replace(name.begin(), name.end(), u':', u'/');
    return name;
}

void StoreName(const std::u16string &name, HFSUniStr255 &place) {
    const std::size_t length = std::min(name.size(), std::size(place.unicode));
    place.length = static_cast<UInt16>(length);
    std::memcpy(place.unicode, name.data(), length * sizeof(UniChar));
}

// The name as programs of old see it: MacRoman, a question mark for what that has not, and no longer than 31 bytes: a
// longer one keeps its beginning and its extension and has the node's number in between.
std::string OldName(const std::u16string &name, UInt32 nodeId) {
    constexpr std::size_t kLongest = 31;
    constexpr std::size_t kLongestExtension = 5;
    std::string text = EncodeLossy(Normalized(name, kCFStringNormalizationFormC), kCFStringEncodingMacRoman);
    if (text.size() <= kLongest)
        return text;
    char number[16];
    std::snprintf(number, sizeof number, "#%lX", nodeId);
    const std::size_t dot = text.find_last_of('.');
    std::string end = number;
    if (dot != std::string::npos && text.size() - dot <= kLongestExtension)
        end += text.substr(dot);
    return text.substr(0, kLongest - end.size()) + end;
}

void StoreSpec(const ReferencedItem &item, FSSpec &place) {
    const environment::Volume volume = environment::VolumeOf(item.path);
    const bool isRoot = volume.rootPath == item.path;
    const std::string name = OldName(NameOf(item), NodeIdOf(item.path));
    place = {};
    place.vRefNum = volume.number;
    place.parID = isRoot ? fsRtParID : static_cast<SInt32>(NodeIdOf(ParentOf(item.path)));
    place.name[0] = static_cast<UInt8>(name.size());
    std::memcpy(place.name + 1, name.data(), name.size());
}

FSRef ParentReference(const ReferencedItem &item) {
    if (item.isRootParent || environment::VolumeWithRoot(item.path))
        return ReferenceToRootParent();
    return ReferenceTo(ParentOf(item.path));
}

} // namespace

OSErr FSGetCatalogInfo(const FSRef *ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo *catalogInfo,
                       HFSUniStr255 *outName, FSSpecPtr fsSpec, FSRef *parentRef) {
    if (!ref || (whichInfo != kFSCatInfoNone && !catalogInfo))
        return paramErr;
    if (whichInfo != kFSCatInfoNone && whichInfo != kFSCatInfoNodeID)
        Stop("FSGetCatalogInfo was asked for fields that are not modelled");
    if (getCatalogInfo.Fails())
        return kMemoryFullError;
    const ReferencedItem item = ItemOf(*ref);
    if (item.error != noErr)
        return item.error;
    if (item.isRootParent && fsSpec)
        return nsvErr;
    if (whichInfo == kFSCatInfoNodeID)
        catalogInfo->nodeID = item.isRootParent ? static_cast<UInt32>(fsRtParID) : NodeIdOf(item.path);
    if (outName)
        StoreName(NameOf(item), *outName);
    if (fsSpec)
        StoreSpec(item, *fsSpec);
    if (parentRef)
        *parentRef = ParentReference(item);
    return noErr;
}
