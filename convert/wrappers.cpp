#include "convert/wrappers.h"

#include <algorithm>
#include <array>

#include <ApplicationServices/ApplicationServices.h>

#include "host/objects.h"
#include "host/owned.h"
#include "host/services.h"

REALobjectStruct *WrapperKeptBy(CFTypeRef value, const char *className, CFTypeRef (*retain)(CFTypeRef)) {
    auto instance = OwnedObject::Adopt(REALnewInstance(className));
    if (!instance)
        return nullptr;
    auto &data = CompanionData<WrapperData>(instance.Get());
    data.Ref = retain(value);
    // Deliberate: these classes are tagged whatever the tag was before.
    data.Signature = kWrapperSignature;
    return instance.Give();
}

REALobjectStruct *WrapperOrCFObject(CFTypeRef value, const char *className) {
    REALobjectStruct *instance = REALnewInstance(className);
    if (!instance)
        instance = REALnewInstance("CFObjectQTX");
    if (!instance)
        return nullptr;
    auto &data = CompanionData<WrapperData>(instance);
    // Deliberate: an instance with another tag is no wrapper that may be written into; it is left alone, its reference
    // not given up.
    if (data.Signature != kWrapperSignature)
        return nullptr;
    data.Signature = kWrapperSignature;
    data.Ref = CFRetain(value);
    return instance;
}

namespace {

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

CFTypeRef CopyCompanion(REALobjectStruct *object) {
    for (const ObjectConversion &row : kCompanionClasses)
        if (IsA(object, row.className))
            return row.convert(object);
    return nullptr;
}
