#include "convert/to_host_values.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>

#include "convert/to_host.h"
#include "host/arrays.h"
#include "host/exceptions.h"
#include "host/strings.h"

REALobjectStruct *NilValue(CFTypeRef) { return nullptr; }

REALobjectStruct *BooleanVariant(CFTypeRef value) {
    return BooleanToVariant(CFBooleanGetValue(static_cast<CFBooleanRef>(value)));
}

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

REALobjectStruct *HostDate(CFTypeRef value) {
    using Constructor =
        void (*)(REALobjectStruct *, int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute, int32_t);
    constexpr const char *kConstructor = "Year as Integer, Month as Integer = 1, Day as Integer = 1, hour as Integer "
                                         "= 0, minute as Integer = 0, second as Integer = 0";

    // Deliberate: no time zone, which means GMT.
    const CFGregorianDate fields =
        CFAbsoluteTimeGetGregorianDate(CFDateGetAbsoluteTime(static_cast<CFDateRef>(value)), nullptr);
    // Of an infinite date, and of one that is no number, the second is no number either.
    const int32_t second = std::isfinite(fields.second) ? static_cast<int32_t>(fields.second) : 0;
    auto date = OwnedObject::Adopt(REALnewInstance("Date"));
    if (!date)
        return nullptr;
    const auto construct = reinterpret_cast<Constructor>(REALLoadObjectMethod(date.Get(), kConstructor));
    if (construct) {
        construct(date.Get(), fields.year, fields.month, fields.day, fields.hour, fields.minute, second);
        return date.Give();
    }
    REALSetPropValueInteger(date.Get(), "Year", fields.year);
    REALSetPropValueInteger(date.Get(), "Month", fields.month);
    REALSetPropValueInteger(date.Get(), "Day", fields.day);
    REALSetPropValueInteger(date.Get(), "Hour", fields.hour);
    REALSetPropValueInteger(date.Get(), "Minute", fields.minute);
    REALSetPropValueInteger(date.Get(), "Second", second);
    return date.Give();
}

namespace {

/// +1, or null, whatever the host's reason.
OwnedObject NewMemoryBlock(CFIndex length) {
    if (length >= INT32_MAX)
        return {};
    try {
        return OwnedObject::Adopt(newMemoryBlock(static_cast<int32_t>(length)));
    } catch (const std::bad_alloc &) {
        return {};
    }
}

} // namespace

REALobjectStruct *HostMemoryBlock(CFTypeRef value) {
    const auto data = static_cast<CFDataRef>(value);
    const UInt8 *bytes = CFDataGetBytePtr(data);
    const CFIndex length = CFDataGetLength(data);
    if (!bytes || length < 1)
        return nullptr;

    auto block = NewMemoryBlock(length);
    void *memory = block ? memoryBlockGetPtr(block.Get()) : nullptr;
    if (!memory) {
        block = {};
        char message[200];
        std::snprintf(message, sizeof message, "Failed to allocate a memoryblock with %lld bytes in size.",
                      static_cast<long long>(length));
        RaiseException("OutOfMemoryException", message);
        return nullptr;
    }
    std::memcpy(memory, bytes, static_cast<size_t>(length));
    // Hosts have always been asked for one more reference, to be given up at once.
    { const auto hold = Hold(block.Get()); }
    return block.Give();
}

REALobjectStruct *HostArray(CFTypeRef value) {
    const auto values = static_cast<CFArrayRef>(value);
    const CFIndex count = CFArrayGetCount(values);
    // Storing asks for the upper bound; a host that cannot tell it has no place for any element.
    if (count > 0 && !REALGetArrayUBound)
        return nullptr;
    auto array = OwnedHost<_REALarrayObject>::Adopt(NewObjectArray(static_cast<int32_t>(count - 1)));
    if (!array)
        return nullptr;
    for (CFIndex i = 0; i < count; i++) {
        const auto element = OwnedObject::Adopt(GetCFTypeAsVariant(CFArrayGetValueAtIndex(values, i)));
        StoreArrayObject(array.Get(), static_cast<int32_t>(i), element.Get());
    }
    return array.Give();
}
