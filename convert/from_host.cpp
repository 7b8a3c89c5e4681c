// What each type of variant becomes.
#include "convert/from_host.h"

#include <ApplicationServices/ApplicationServices.h>

#include "convert/arrays.h"
#include "convert/dates.h"
#include "convert/dictionaries.h"
#include "convert/folder_items.h"
#include "convert/memory_blocks.h"
#include "convert/variant_scalars.h"
#include "convert/wrappers.h"
#include "host/objects.h"
#include "host/strings.h"

namespace {

template <class Value> OwnedCF<CFNumberRef> Number(CFNumberType type, Value value) {
    return AdoptCF(CFNumberCreate(kCFAllocatorDefault, type, &value));
}

OwnedCF<CFBooleanRef> Boolean8(int32_t value) {
    // Deliberate: only the low eight bits count.
    return HoldCF((value & 0xFF) != 0 ? kCFBooleanTrue : kCFBooleanFalse);
}

OwnedCF<CGColorRef> Color(int32_t packed) {
    const auto component = [packed](int shift) {
        return static_cast<CGFloat>(((static_cast<uint32_t>(packed) >> shift) & 0xFF) / 255.0);
    };
    return AdoptCF(CGColorCreateGenericRGB(component(16), component(8), component(0), 1.0F));
}

OwnedCF<CFStringRef> Text(REALobjectStruct *value) {
    const auto string = AdoptHost(GetVariantString(value));
    return TextOrEmpty(string.Get());
}

bool IsFolderItem(REALobjectStruct *object) {
    return REALLoadObjectMethod(object, "TrueItem(Index as integer) as Folderitem") != nullptr;
}

/// Memory blocks, folder items, dictionaries and the objects of companion plugins, tested in a fixed order.
OwnedCF<CFTypeRef> ConvertObject(REALobjectStruct *object) {
    if (IsA(object, "MemoryBlock"))
        return CopyMemoryBlock(object);
    if (IsFolderItem(object))
        return AdoptCF(CreateCFURLfromFolderItem(static_cast<REALfolderItemStruct *>(object)));
    if (IsA(object, "Dictionary"))
        return CopyDictionary(object);
    return CopyCompanion(object);
}

OwnedCF<CFTypeRef> Convert(REALobjectStruct *value) {
    const int32_t type = GetVariantType(value);
    switch (type) {
    case kVariantNil:
        return {};
    case kVariantInt32:
        return Number(kCFNumberSInt32Type, GetVariantInt32(value));
    case kVariantInt64:
        return Number(kCFNumberSInt64Type, GetVariantInt64(value));
    case kVariantSingle:
        return Number(kCFNumberFloat32Type, GetVariantSingle(value));
    case kVariantDouble:
    case kVariantOtherDouble:
        return Number(kCFNumberFloat64Type, GetVariantDouble(value));
    case kVariantDate:
        return AdoptCF(RBDate2CFDate(static_cast<_REALdate *>(value)));
    case kVariantObject:
        return ConvertObject(value);
    case kVariantBoolean:
        return Boolean8(GetVariantInt32(value));
    case kVariantColor:
        return Color(GetVariantInt32(value));
    default:
        if (const ArrayConversion convert = ConversionOfArray(type))
            return convert(static_cast<_REALarray *>(value));
        // Every code without a branch of its own goes through the host's own conversion to text.
        return Text(value);
    }
}

} // namespace

CFTypeRef CopyVariantAsCFType(REALobjectStruct *value) { return value ? Convert(value).Give() : nullptr; }
