#include "convert/wrappers.h"

#include <algorithm>
#include <array>

#include <ApplicationServices/ApplicationServices.h>

#include "host/objects.h"
#include "host/services.h"

OwnedObject NewWrapper(CFTypeRef value, const char *className, CFTypeRef (*retain)(CFTypeRef)) {
    auto instance = AdoptHost(REALnewInstance(className));
    if (!instance)
        return {};
    auto &data = CompanionData<WrapperData>(instance.Get());
    data.Ref = retain(value);
    // Deliberate: these classes are tagged whatever the tag was before.
    data.Signature = kWrapperSignature;
    return instance;
}

OwnedObject NewWrapperOrCFObject(CFTypeRef value, const char *className) {
    auto instance = NewInstance(className, "CFObjectQTX");
    if (!instance)
        return {};
    auto &data = CompanionData<WrapperData>(instance.Get());
    if (data.Signature != kWrapperSignature) {
        // Deliberate: an instance with another tag is no wrapper that may be written into; it is left alone, its
        // reference not given up.
        static_cast<void>(instance.Give());
        return {};
    }
    // A tag is written whenever a reference is, as above.
    data.Signature = kWrapperSignature;
    data.Ref = CFRetain(value);
    return instance;
}

namespace {

/// The doubles at the start of a geometry object's data, narrowed to the platform's 32-bit coordinates.
template <size_t n> OwnedCF<CFTypeRef> CopyWrapperGeometry(REALobjectStruct *object) {
    const auto &fields = CompanionData<std::array<double, n>>(object);
    std::array<CGFloat, n> coordinates;
    std::transform(fields.begin(), fields.end(), coordinates.begin(),
                   [](double field) { return static_cast<CGFloat>(field); });
    return AdoptCF(
        CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(coordinates.data()), sizeof coordinates));
}

template <auto retain> OwnedCF<CFTypeRef> CopyWrapperReference(REALobjectStruct *object) {
    const CFTypeRef held = CompanionData<WrapperData>(object).Ref;
    return AdoptCF(held ? RetainForWrapper<retain>(held) : nullptr);
}

struct ObjectConversion {
    const char *className;
    OwnedCF<CFTypeRef> (*convert)(REALobjectStruct *object);
};

/// The companions' classes, in the order in which they are tested.
constexpr ObjectConversion kCompanionClasses[] = {
    {"CGRectQTX", CopyWrapperGeometry<4>},
    {"CGSizeQTX", CopyWrapperGeometry<2>},
    {"CGPointQTX", CopyWrapperGeometry<2>},
    {"CGImageQTX", CopyWrapperReference<CGImageRetain>},
    {"CGColorSpaceQTX", CopyWrapperReference<CGColorSpaceRetain>},
    {"CGColorQTX", CopyWrapperReference<CGColorRetain>},
    {"CGDataProviderQTX", CopyWrapperReference<CGDataProviderRetain>},
    {"CGDataConsumerQTX", CopyWrapperReference<CGDataConsumerRetain>},
    {"CGFontQTX", CopyWrapperReference<CFRetain>},
    {"CGContextQTX", CopyWrapperReference<CFRetain>},
    {"CGEventQTX", CopyWrapperReference<CFRetain>},
    {"CGEventSourceQTX", CopyWrapperReference<CFRetain>},
    {"CGLayerQTX", CopyWrapperReference<CFRetain>},
    {"CGPathQTX", CopyWrapperReference<CFRetain>},
    {"CGPSConverterQTX", CopyWrapperReference<CFRetain>},
    {"KeychainQTX", CopyWrapperReference<CFRetain>},
    {"KeychainItemQTX", CopyWrapperReference<CFRetain>},
    {"CFObjectQTX", CopyWrapperReference<CFRetain>},
    {"NSAttributedStringQTX", CopyWrapperReference<CFRetain>},
    {"NSTimerQTX", CopyWrapperReference<CFRetain>},
    {"NSCalendarQTX", CopyWrapperReference<CFRetain>},
    {"NSCharacterSetQTX", CopyWrapperReference<CFRetain>},
    {"NSErrorQTX", CopyWrapperReference<CFRetain>},
    {"NSLocaleQTX", CopyWrapperReference<CFRetain>},
    {"NSTimeZoneQTX", CopyWrapperReference<CFRetain>},
};

} // namespace

OwnedCF<CFTypeRef> CopyCompanion(REALobjectStruct *object) {
    for (const ObjectConversion &row : kCompanionClasses)
        if (IsA(object, row.className))
            return row.convert(object);
    return {};
}
