#include "convert/from_host_objects.h"

#include <algorithm>
#include <array>

#include <ApplicationServices/ApplicationServices.h>

#include "convert/folder_items.h"
#include "convert/from_host_dictionary.h"
#include "convert/wrapper_objects.h"
#include "host/owned.h"
#include "host/services.h"

namespace {

/// A class that the application lacks has no instances.
bool IsA(REALobjectStruct *object, const char *className) {
    REALclassStruct *classRef = REALGetClassRef(className);
    return classRef && REALObjectIsA(object, classRef);
}

bool IsFolderItem(REALobjectStruct *object) {
    return REALLoadObjectMethod(object, "TrueItem(Index as integer) as Folderitem") != nullptr;
}

CFTypeRef CopyMemoryBlock(REALobjectStruct *block) {
    const auto hold = Hold(block);
    const int32_t size = std::max<int32_t>(memoryBlockGetSize(block), 0);
    const auto *bytes = static_cast<const UInt8 *>(memoryBlockGetPtr(block));
    return CFDataCreate(kCFAllocatorDefault, bytes, bytes ? size : 0);
}

/// The doubles at the start of a geometry object's data, narrowed to the platform's 32-bit coordinates.
template <size_t n> CFTypeRef CopyGeometry(REALobjectStruct *object) {
    const auto &fields = CompanionData<std::array<double, n>>(object);
    std::array<CGFloat, n> coordinates;
    std::transform(fields.begin(), fields.end(), coordinates.begin(),
                   [](double field) { return static_cast<CGFloat>(field); });
    return CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(coordinates.data()), sizeof coordinates);
}

template <class Reference, Reference (*retain)(Reference)> CFTypeRef CopyHeld(REALobjectStruct *object) {
    const CFTypeRef held = CompanionData<WrapperData>(object).Ref;
    return held ? retain(static_cast<Reference>(const_cast<void *>(held))) : nullptr;
}

struct ObjectConversion {
    const char *className;
    CFTypeRef (*convert)(REALobjectStruct *object);
};

/// The companions' classes, in the order in which they are tested.
constexpr ObjectConversion kCompanionClasses[] = {
    {"CGRectQTX", CopyGeometry<4>},
    {"CGSizeQTX", CopyGeometry<2>},
    {"CGPointQTX", CopyGeometry<2>},
    {"CGImageQTX", CopyHeld<CGImageRef, CGImageRetain>},
    {"CGColorSpaceQTX", CopyHeld<CGColorSpaceRef, CGColorSpaceRetain>},
    {"CGColorQTX", CopyHeld<CGColorRef, CGColorRetain>},
    {"CGDataProviderQTX", CopyHeld<CGDataProviderRef, CGDataProviderRetain>},
    {"CGDataConsumerQTX", CopyHeld<CGDataConsumerRef, CGDataConsumerRetain>},
    {"CGFontQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"CGContextQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"CGEventQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"CGEventSourceQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"CGLayerQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"CGPathQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"CGPSConverterQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"KeychainQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"KeychainItemQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"CFObjectQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"NSAttributedStringQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"NSTimerQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"NSCalendarQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"NSCharacterSetQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"NSErrorQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"NSLocaleQTX", CopyHeld<CFTypeRef, CFRetain>},
    {"NSTimeZoneQTX", CopyHeld<CFTypeRef, CFRetain>},
};

} // namespace

CFTypeRef CopyObjectAsCFType(REALobjectStruct *object) {
    if (IsA(object, "MemoryBlock"))
        return CopyMemoryBlock(object);
    if (IsFolderItem(object))
        return CreateCFURLfromFolderItem(static_cast<REALfolderItemStruct *>(object));
    if (IsA(object, "Dictionary"))
        return CopyDictionary(object);
    for (const ObjectConversion &row : kCompanionClasses)
        if (IsA(object, row.className))
            return row.convert(object);
    return nullptr;
}
