// Which host value a Core Foundation type becomes. The order of the rows is the contract: the first match decides.
#include "convert/to_host.h"

#include <ApplicationServices/ApplicationServices.h>

#include "convert/arrays.h"
#include "convert/dates.h"
#include "convert/dictionaries.h"
#include "convert/folder_items.h"
#include "convert/memory_blocks.h"
#include "convert/wrappers.h"
#include "host/owned.h"
#include "host/strings.h"

namespace {

REALobjectStruct *NilValue(CFTypeRef) { return nullptr; }

REALobjectStruct *BooleanVariant(CFTypeRef value) {
    return BooleanToVariant(CFBooleanGetValue(static_cast<CFBooleanRef>(value)));
}

/// A 64-bit float, a 32-bit integer or a 64-bit integer, as the number is stored.
REALobjectStruct *NumberVariant(CFTypeRef value) {
    const auto number = static_cast<CFNumberRef>(value);
    double real = 0;
    if (CFNumberIsFloatType(number) && CFNumberGetValue(number, kCFNumberDoubleType, &real))
        return DoubleToVariant(real);
    int32_t narrow = 0;
    if (CFNumberGetByteSize(number) <= 4 && CFNumberGetValue(number, kCFNumberLongType, &narrow))
        return IntegerToVariant(narrow);
    int64_t wide = 0;
    if (CFNumberGetValue(number, kCFNumberLongLongType, &wide))
        return Int64ToVariant(wide);
    return nullptr;
}

REALobjectStruct *StringVariant(CFTypeRef value) {
    const auto text = OwnedString::Adopt(CFString2RBString(static_cast<CFStringRef>(value)));
    return text ? StringToVariant(text.Get()) : nullptr;
}

struct Conversion {
    bool (*matches)(CFTypeID type);
    REALobjectStruct *(*convert)(CFTypeRef value, const char *className);
    const char *className;
};

// The platform's functions come in as template arguments, so that a row holds a function of ours and the import is
// bound when it is first called.
template <CFTypeID (*typeID)()> bool IsOfType(CFTypeID type) { return typeID() == type; }

template <auto convert> REALobjectStruct *ConvertBy(CFTypeRef value, const char *) { return convert(value); }

template <class Reference, Reference (*retain)(Reference)> CFTypeRef RetainBy(CFTypeRef value) {
    return retain(static_cast<Reference>(const_cast<void *>(value)));
}

template <class Reference, Reference (*retain)(Reference)>
REALobjectStruct *WrapKeptBy(CFTypeRef value, const char *className) {
    return WrapperKeptBy(value, className, RetainBy<Reference, retain>);
}

/// A natural host value, made by a function.
template <CFTypeID (*typeID)(), auto convert> constexpr Conversion Converted() {
    return {IsOfType<typeID>, ConvertBy<convert>, nullptr};
}

/// A wrapper that keeps the reference with the type's own retain function. There is no class to fall back on.
template <CFTypeID (*typeID)(), class Reference, Reference (*retain)(Reference)>
constexpr Conversion WrappedKeptBy(const char *className) {
    return {IsOfType<typeID>, WrapKeptBy<Reference, retain>, className};
}

/// A wrapper of the named class, or else a "CFObjectQTX".
template <CFTypeID (*typeID)()> constexpr Conversion WrappedOrCFObject(const char *className) {
    return {IsOfType<typeID>, WrapperOrCFObject, className};
}

constexpr Conversion kNaturalValues[] = {
    Converted<CFURLGetTypeID, FolderItemOrText>(),
    Converted<CFBooleanGetTypeID, BooleanVariant>(),
    Converted<CFNumberGetTypeID, NumberVariant>(),
    Converted<CFArrayGetTypeID, HostArray>(),
    Converted<CFNullGetTypeID, NilValue>(),
    Converted<CFDictionaryGetTypeID, HostDictionary>(),
    Converted<CFStringGetTypeID, StringVariant>(),
    Converted<CFDataGetTypeID, HostMemoryBlock>(),
    Converted<CFDateGetTypeID, HostDate>(),
    WrappedKeptBy<CGColorSpaceGetTypeID, CGColorSpaceRef, CGColorSpaceRetain>("CGColorSpaceQTX"),
    WrappedKeptBy<CGColorGetTypeID, CGColorRef, CGColorRetain>("CGColorQTX"),
    WrappedKeptBy<CGImageGetTypeID, CGImageRef, CGImageRetain>("CGImageQTX"),
    WrappedKeptBy<CGLayerGetTypeID, CGLayerRef, CGLayerRetain>("CGLayerQTX"),
    WrappedKeptBy<CGPathGetTypeID, CGPathRef, CGPathRetain>("CGPathQTX"),
    WrappedKeptBy<CGDataConsumerGetTypeID, CGDataConsumerRef, CGDataConsumerRetain>("CGDataConsumerQTX"),
    WrappedKeptBy<CGDataProviderGetTypeID, CGDataProviderRef, CGDataProviderRetain>("CGDataProviderQTX"),
    WrappedKeptBy<CGPSConverterGetTypeID, CFTypeRef, CFRetain>("CGPSConverterQTX"),
    WrappedKeptBy<CGContextGetTypeID, CGContextRef, CGContextRetain>("CGContextQTX"),
    WrappedOrCFObject<CGEventGetTypeID>("CGEventQTX"),
    WrappedOrCFObject<CGEventSourceGetTypeID>("CGEventSourceQTX"),
    WrappedKeptBy<CGFontGetTypeID, CGFontRef, CGFontRetain>("CGFontQTX"),
};

// The complete map of types to the wrapper family. Deliberate: the rows whose types the first table has already
// converted can never match and are kept.
constexpr Conversion kWrapperClasses[] = {
    WrappedOrCFObject<CFURLGetTypeID>("CFURLQTX"),
    WrappedOrCFObject<CFDictionaryGetTypeID>("CFDictionaryQTX"),
    WrappedOrCFObject<CFStringGetTypeID>("CFStringQTX"),
    WrappedOrCFObject<CFNumberGetTypeID>("CFNumberQTX"),
    WrappedOrCFObject<CFArrayGetTypeID>("CFArrayQTX"),
    WrappedOrCFObject<CFBooleanGetTypeID>("CFBooleanQTX"),
    WrappedOrCFObject<CFDataGetTypeID>("CFBinaryDataQTX"),
    WrappedOrCFObject<CFCharacterSetGetTypeID>("CFCharacterSetQTX"),
    WrappedOrCFObject<CFBundleGetTypeID>("CFBundleQTX"),
    WrappedOrCFObject<CFSetGetTypeID>("CFSetQTX"),
    WrappedOrCFObject<CFBagGetTypeID>("CFBagQTX"),
    WrappedOrCFObject<CFUUIDGetTypeID>("CFUUIDQTX"),
    WrappedOrCFObject<CFTimeZoneGetTypeID>("CFTimeZoneQTX"),
    WrappedOrCFObject<CFDateGetTypeID>("CFDateQTX"),
    WrappedOrCFObject<CFAttributedStringGetTypeID>("CFAttributedStringQTX"),
    WrappedOrCFObject<CFErrorGetTypeID>("CFErrorQTX"),
    WrappedOrCFObject<CTFontGetTypeID>("CTFontQTX"),
    WrappedOrCFObject<CTFontCollectionGetTypeID>("CTFontCollectionQTX"),
    WrappedOrCFObject<CTFrameGetTypeID>("CTFrameQTX"),
    WrappedOrCFObject<CTFramesetterGetTypeID>("CTFramesetterQTX"),
    WrappedOrCFObject<CTGlyphInfoGetTypeID>("CTGlyphInfoQTX"),
    WrappedOrCFObject<CTLineGetTypeID>("CTLineQTX"),
    WrappedOrCFObject<CTParagraphStyleGetTypeID>("CTParagraphStyleQTX"),
    WrappedOrCFObject<CTRunGetTypeID>("CTRunQTX"),
    WrappedOrCFObject<CTTypesetterGetTypeID>("CTTypesetterQTX"),
    WrappedOrCFObject<CTRunDelegateGetTypeID>("CTRunDelegateQTX"),
};

template <size_t n> const Conversion *FirstMatch(const Conversion (&rows)[n], CFTypeID type) {
    for (const Conversion &row : rows)
        if (row.matches(type))
            return &row;
    return nullptr;
}

} // namespace

REALobjectStruct *GetCFTypeAsVariant(CFTypeRef value) {
    if (!value || value == kCFNull)
        return nullptr;
    if (const Conversion *row = FirstMatch(kNaturalValues, CFGetTypeID(value)))
        return row->convert(value, row->className);
    if (const Conversion *row = FirstMatch(kWrapperClasses, CFGetTypeID(value)))
        return row->convert(value, row->className);
    return WrapperOrCFObject(value, "CFObjectQTX");
}
