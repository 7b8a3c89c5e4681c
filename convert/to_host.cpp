// Which host value a Core Foundation type becomes. The order of the rows is the contract: the first match decides.
#include "convert/to_host.h"

#include <ApplicationServices/ApplicationServices.h>

#include "convert/arrays.h"
#include "convert/dates.h"
#include "convert/dictionaries.h"
#include "convert/folder_items.h"
#include "convert/memory_blocks.h"
#include "convert/wrappers.h"
#include "host/strings.h"

namespace {

OwnedObject NilValue(CFNullRef) { return {}; }

OwnedObject BooleanVariant(CFBooleanRef value) { return AdoptHost(BooleanToVariant(CFBooleanGetValue(value))); }

/// A 64-bit float, a 32-bit integer or a 64-bit integer, as the number is stored.
OwnedObject NumberVariant(CFNumberRef number) {
    double real = 0;
    if (CFNumberIsFloatType(number) && CFNumberGetValue(number, kCFNumberDoubleType, &real))
        return AdoptHost(DoubleToVariant(real));
    int32_t narrow = 0;
    if (CFNumberGetByteSize(number) <= 4 && CFNumberGetValue(number, kCFNumberLongType, &narrow))
        return AdoptHost(IntegerToVariant(narrow));
    int64_t wide = 0;
    if (CFNumberGetValue(number, kCFNumberLongLongType, &wide))
        return AdoptHost(Int64ToVariant(wide));
    return {};
}

OwnedObject StringVariant(CFStringRef value) {
    const auto text = AdoptHost(CFString2RBString(value));
    return AdoptHost(text ? StringToVariant(text.Get()) : nullptr);
}

struct Conversion {
    bool (*matches)(CFTypeID type);
    OwnedObject (*convert)(CFTypeRef value, const char *className);
    const char *className;
};

// The platform's functions come in as template arguments, so that a row holds a function of ours and the import is
// bound when it is first called.
template <CFTypeID (*typeID)()> bool IsOfType(CFTypeID type) { return typeID() == type; }

template <class Host, class Reference> Reference ParameterOf(Host (*)(Reference));
template <auto convert> OwnedObject ConvertBy(CFTypeRef value, const char *) {
    return convert(static_cast<decltype(ParameterOf(convert))>(value));
}

template <auto retain> OwnedObject WrapKeptBy(CFTypeRef value, const char *className) {
    return WrapperKeptBy(value, className, RetainBy<retain>);
}

/// A natural host value, made by a function.
template <CFTypeID (*typeID)(), auto convert> constexpr Conversion Converted() {
    return {IsOfType<typeID>, ConvertBy<convert>, nullptr};
}

/// A wrapper that keeps the reference with the type's own retain function. There is no class to fall back on.
template <CFTypeID (*typeID)(), auto retain> constexpr Conversion WrappedKeptBy(const char *className) {
    return {IsOfType<typeID>, WrapKeptBy<retain>, className};
}

/// A wrapper of the named class, or else a "CFObjectQTX".
template <CFTypeID (*typeID)()> constexpr Conversion WrappedOrCFObject(const char *className) {
    return {IsOfType<typeID>, WrapperOrCFObject, className};
}

constexpr Conversion kNaturalValues[] = {
    Converted<CFURLGetTypeID, FolderItemOrText>(),
    Converted<CFBooleanGetTypeID, BooleanVariant>(),
    Converted<CFNumberGetTypeID, NumberVariant>(),
    Converted<CFArrayGetTypeID, NewHostArray>(),
    Converted<CFNullGetTypeID, NilValue>(),
    Converted<CFDictionaryGetTypeID, NewHostDictionary>(),
    Converted<CFStringGetTypeID, StringVariant>(),
    Converted<CFDataGetTypeID, NewMemoryBlock>(),
    Converted<CFDateGetTypeID, NewHostDate>(),
    WrappedKeptBy<CGColorSpaceGetTypeID, CGColorSpaceRetain>("CGColorSpaceQTX"),
    WrappedKeptBy<CGColorGetTypeID, CGColorRetain>("CGColorQTX"),
    WrappedKeptBy<CGImageGetTypeID, CGImageRetain>("CGImageQTX"),
    WrappedKeptBy<CGLayerGetTypeID, CGLayerRetain>("CGLayerQTX"),
    WrappedKeptBy<CGPathGetTypeID, CGPathRetain>("CGPathQTX"),
    WrappedKeptBy<CGDataConsumerGetTypeID, CGDataConsumerRetain>("CGDataConsumerQTX"),
    WrappedKeptBy<CGDataProviderGetTypeID, CGDataProviderRetain>("CGDataProviderQTX"),
    WrappedKeptBy<CGPSConverterGetTypeID, CFRetain>("CGPSConverterQTX"),
    WrappedKeptBy<CGContextGetTypeID, CGContextRetain>("CGContextQTX"),
    WrappedOrCFObject<CGEventGetTypeID>("CGEventQTX"),
    WrappedOrCFObject<CGEventSourceGetTypeID>("CGEventSourceQTX"),
    WrappedKeptBy<CGFontGetTypeID, CGFontRetain>("CGFontQTX"),
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
        return row->convert(value, row->className).Give();
    if (const Conversion *row = FirstMatch(kWrapperClasses, CFGetTypeID(value)))
        return row->convert(value, row->className).Give();
    return WrapperOrCFObject(value, "CFObjectQTX").Give();
}
