// What becomes what: which host value a Core Foundation type, which Core Foundation value a variant. Scalars are
// converted here, every other kind of value in a file of its own.
#include "convert/values.h"

#include <ApplicationServices/ApplicationServices.h>

#include "convert/arrays.h"
#include "convert/dates.h"
#include "convert/dictionaries.h"
#include "convert/folder_items.h"
#include "convert/memory_blocks.h"
#include "convert/wrappers.h"
#include "host/host_function.h"
#include "host/objects.h"
#include "host/strings.h"

namespace {

// To the host. The order of the rows is the contract: the first match decides.

OwnedObject NilValue(CFNullRef) { return {}; }

OwnedObject BooleanValue(CFBooleanRef value) { return AdoptHost(BooleanToVariant(CFBooleanGetValue(value))); }

/// A 64-bit float, a 32-bit integer or a 64-bit integer, as the number is stored.
OwnedObject NumberValue(CFNumberRef number) {
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

OwnedObject StringValue(CFStringRef value) {
    auto text = AdoptHost(CFString2RBString(value));
    auto variant = AdoptHost(text ? StringToVariant(text.Get()) : nullptr);
    Release(text);
    return variant;
}

struct Conversion {
    bool (*matches)(CFTypeID type);
    OwnedObject (*convert)(CFTypeRef value, const char *className);
    const char *className;
};

// The platform's functions come in as template arguments, so that a row holds a function of ours and the import is
// bound when it is first called.
template <CFTypeID (*typeID)()> bool IsOfType(CFTypeID type) { return typeID() == type; }

template <auto convert> OwnedObject ConvertBy(CFTypeRef value, const char *) {
    return convert(static_cast<decltype(ParameterOf(convert))>(value));
}

template <auto retain> OwnedObject ConvertByWrapping(CFTypeRef value, const char *className) {
    return NewWrapper(value, className, RetainForWrapper<retain>);
}

/// A natural host value, made by a function.
template <CFTypeID (*typeID)(), auto convert> constexpr Conversion Converted() {
    return {IsOfType<typeID>, ConvertBy<convert>, nullptr};
}

/// A wrapper that keeps the reference with the type's own retain function. There is no class to fall back on.
template <CFTypeID (*typeID)(), auto retain> constexpr Conversion Wrapped(const char *className) {
    return {IsOfType<typeID>, ConvertByWrapping<retain>, className};
}

/// A wrapper of the named class, or else a "CFObjectQTX".
template <CFTypeID (*typeID)()> constexpr Conversion WrappedOrCFObject(const char *className) {
    return {IsOfType<typeID>, NewWrapperOrCFObject, className};
}

constexpr Conversion kNaturalValues[] = {
    Converted<CFURLGetTypeID, FolderItemOrText>(),
    Converted<CFBooleanGetTypeID, BooleanValue>(),
    Converted<CFNumberGetTypeID, NumberValue>(),
    Converted<CFArrayGetTypeID, ConvertToHostArray>(),
    Converted<CFNullGetTypeID, NilValue>(),
    Converted<CFDictionaryGetTypeID, NewHostDictionary>(),
    Converted<CFStringGetTypeID, StringValue>(),
    Converted<CFDataGetTypeID, NewMemoryBlock>(),
    Converted<CFDateGetTypeID, NewHostDate>(),
    Wrapped<CGColorSpaceGetTypeID, CGColorSpaceRetain>("CGColorSpaceQTX"),
    Wrapped<CGColorGetTypeID, CGColorRetain>("CGColorQTX"),
    Wrapped<CGImageGetTypeID, CGImageRetain>("CGImageQTX"),
    Wrapped<CGLayerGetTypeID, CGLayerRetain>("CGLayerQTX"),
    Wrapped<CGPathGetTypeID, CGPathRetain>("CGPathQTX"),
    Wrapped<CGDataConsumerGetTypeID, CGDataConsumerRetain>("CGDataConsumerQTX"),
    Wrapped<CGDataProviderGetTypeID, CGDataProviderRetain>("CGDataProviderQTX"),
    Wrapped<CGPSConverterGetTypeID, CFRetain>("CGPSConverterQTX"),
    Wrapped<CGContextGetTypeID, CGContextRetain>("CGContextQTX"),
    WrappedOrCFObject<CGEventGetTypeID>("CGEventQTX"),
    WrappedOrCFObject<CGEventSourceGetTypeID>("CGEventSourceQTX"),
    Wrapped<CGFontGetTypeID, CGFontRetain>("CGFontQTX"),
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

template <size_t n> const Conversion *FindConversion(const Conversion (&rows)[n], CFTypeID type) {
    for (const Conversion &row : rows)
        if (row.matches(type))
            return &row;
    return nullptr;
}

// From the host. What a variant holds is read through the host's conversion services, or through the variant's
// properties where the host lacks them; numbers are 0, and the string is null, where it has neither.

/// The conversion service's answer, or the named property's, or 0.
template <class Value>
Value ReadScalar(REALobjectStruct *variant, EntryPoint<Value(REALobjectStruct *)> &convert,
                 PropertyGetter<Value> &getProperty, const char *property) {
    if (convert)
        return convert(variant);
    Value value{};
    getProperty(variant, property, &value);
    return value;
}

/// kVariantNil when the host has no means to tell.
int32_t GetVariantType(REALobjectStruct *variant) {
    static constinit HostFunction<int32_t(REALobjectStruct *)> p{"VarType(value As Variant) As Int32"};
    if (p)
        return p(variant);
    int32_t type = kVariantNil;
    return REALGetPropValueInteger(variant, "Type", &type) ? type : int32_t{kVariantNil};
}

OwnedString GetVariantString(REALobjectStruct *variant) {
    return AdoptHost(ReadScalar(variant, VariantToString, REALGetPropValueString, "StringValue"));
}

int32_t GetVariantInt32(REALobjectStruct *variant) {
    return ReadScalar(variant, VariantToInt32, REALGetPropValueInt32, "Int32Value");
}

int64_t GetVariantInt64(REALobjectStruct *variant) {
    return ReadScalar(variant, VariantToInt64, REALGetPropValueInt64, "LongValue");
}

float GetVariantSingle(REALobjectStruct *variant) {
    return ReadScalar(variant, VariantToSingle, REALGetPropValueSingle, "SingleValue");
}

double GetVariantDouble(REALobjectStruct *variant) {
    return ReadScalar(variant, VariantToDouble, REALGetPropValueDouble, "DoubleValue");
}

template <class Value> OwnedCF<CFNumberRef> CopyNumberValue(CFNumberType type, Value value) {
    return AdoptCF(CFNumberCreate(kCFAllocatorDefault, type, &value));
}

OwnedCF<CFBooleanRef> CopyBooleanValue(int32_t value) {
    // Deliberate: only the low eight bits count.
    return HoldCF((value & 0xFF) != 0 ? kCFBooleanTrue : kCFBooleanFalse);
}

OwnedCF<CGColorRef> CopyColorValue(int32_t packed) {
    const auto component = [packed](int shift) {
        return static_cast<CGFloat>(((static_cast<uint32_t>(packed) >> shift) & 0xFF) / 255.0);
    };
    return AdoptCF(CGColorCreateGenericRGB(component(16), component(8), component(0), 1.0F));
}

OwnedCF<CFStringRef> CopyTextValue(REALobjectStruct *value) {
    auto string = GetVariantString(value);
    auto text = TextOrEmpty(string.Get());
    Release(string);
    return text;
}

/// Memory blocks, folder items, dictionaries and the objects of companion plugins, tested in a fixed order.
OwnedCF<CFTypeRef> CopyObjectValue(REALobjectStruct *object) {
    if (IsA(object, "MemoryBlock"))
        return CopyMemoryBlock(object);
    if (IsFolderItem(object))
        return AdoptCF(CreateCFURLfromFolderItem(static_cast<REALfolderItemStruct *>(object)));
    if (IsA(object, "Dictionary"))
        return CopyDictionary(object);
    return CopyCompanion(object);
}

OwnedCF<CFTypeRef> CopyValue(REALobjectStruct *value) {
    const int32_t type = GetVariantType(value);
    switch (type) {
    case kVariantNil:
        return {};
    case kVariantInt32:
        return CopyNumberValue(kCFNumberSInt32Type, GetVariantInt32(value));
    case kVariantInt64:
        return CopyNumberValue(kCFNumberSInt64Type, GetVariantInt64(value));
    case kVariantSingle:
        return CopyNumberValue(kCFNumberFloat32Type, GetVariantSingle(value));
    case kVariantDouble:
    case kVariantOtherDouble:
        return CopyNumberValue(kCFNumberFloat64Type, GetVariantDouble(value));
    case kVariantDate:
        return AdoptCF(RBDate2CFDate(static_cast<_REALdate *>(value)));
    case kVariantObject:
        return CopyObjectValue(value);
    case kVariantBoolean:
        return CopyBooleanValue(GetVariantInt32(value));
    case kVariantColor:
        return CopyColorValue(GetVariantInt32(value));
    default:
        if (const ArrayConversion convert = ConversionOfArray(type))
            return convert(static_cast<_REALarray *>(value));
        // Every code without a branch of its own goes through the host's own conversion to text.
        return CopyTextValue(value);
    }
}

} // namespace

REALobjectStruct *GetCFTypeAsVariant(CFTypeRef value) {
    if (!value || value == kCFNull)
        return nullptr;
    if (const Conversion *row = FindConversion(kNaturalValues, CFGetTypeID(value)))
        return row->convert(value, row->className).Give();
    if (const Conversion *row = FindConversion(kWrapperClasses, CFGetTypeID(value)))
        return row->convert(value, row->className).Give();
    return NewWrapperOrCFObject(value, "CFObjectQTX").Give();
}

CFTypeRef CopyVariantAsCFType(REALobjectStruct *value) { return value ? CopyValue(value).Give() : nullptr; }
