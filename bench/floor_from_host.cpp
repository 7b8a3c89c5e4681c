#include "bench/floor_values.h"

#include <ApplicationServices/ApplicationServices.h>

namespace bench::floors {

namespace {

CFStringRef TextOrEmpty(String *string) {
    CFStringRef text = CopyText(string);
    return text ? text : static_cast<CFStringRef>(CFRetain(CFSTR("")));
}

bool IsA(Object *object, const char *className) { return ObjectIsA(object, ClassNamed(className)); }

CFTypeRef Number(CFNumberType type, const void *value) { return CFNumberCreate(kCFAllocatorDefault, type, value); }

CFTypeRef CopyDate(Object *date) {
    int32_t year, month, day, hour, minute, second;
    GetPropertyInteger(date, "Year", &year);
    GetPropertyInteger(date, "Month", &month);
    GetPropertyInteger(date, "Day", &day);
    GetPropertyInteger(date, "Hour", &hour);
    GetPropertyInteger(date, "Minute", &minute);
    GetPropertyInteger(date, "Second", &second);
    const CFGregorianDate fields = {year,
                                    static_cast<SInt8>(month),
                                    static_cast<SInt8>(day),
                                    static_cast<SInt8>(hour),
                                    static_cast<SInt8>(minute),
                                    static_cast<double>(second)};
    return CFDateCreate(kCFAllocatorDefault, CFGregorianDateGetAbsoluteTime(fields, nullptr));
}

CFTypeRef CopyColor(int32_t packed) {
    const auto component = [packed](int shift) {
        return static_cast<CGFloat>(((static_cast<uint32_t>(packed) >> shift) & 0xFF) / 255.0);
    };
    return CGColorCreateGenericRGB(component(16), component(8), component(0), 1.0F);
}

CFTypeRef CopyOrNull(Object *value) {
    CFTypeRef copy = CopyValue(value);
    return copy ? copy : CFRetain(kCFNull);
}

CFTypeRef CopyDictionary(Object *dictionary) {
    int32_t count = 0;
    GetPropertyInteger(dictionary, "Count", &count);
    CFMutableDictionaryRef copy = CFDictionaryCreateMutable(kCFAllocatorDefault, count, &kCFTypeDictionaryKeyCallBacks,
                                                            &kCFTypeDictionaryValueCallBacks);
    for (int32_t i = 0; i < count; i++) {
        methods.LoadFor(dictionary);
        Object *key = methods.key ? methods.key(dictionary, i) : nullptr;
        methods.LoadFor(dictionary);
        Object *value = methods.get ? methods.get(dictionary, key) : nullptr;
        if (key) {
            CFTypeRef copiedKey = CopyOrNull(key);
            CFTypeRef copiedValue = CopyOrNull(value);
            CFDictionarySetValue(copy, copiedKey, copiedValue);
            CFRelease(copiedValue);
            CFRelease(copiedKey);
        }
        GiveUp(key);
        GiveUp(value);
    }
    methods.of = nullptr;
    return copy;
}

CFTypeRef CopyBlock(Object *block) {
    LockObject(block);
    const int32_t size = GetMemoryBlockSize(block);
    CFTypeRef copy = CFDataCreate(kCFAllocatorDefault, static_cast<const UInt8 *>(GetMemoryBlockPointer(block)), size);
    UnlockObject(block);
    return copy;
}

CFTypeRef CopyFolderItem(Object *item) {
    FSRef ref;
    FSRefFromFolderItem(item, &ref, nullptr);
    return CFURLCreateFromFSRef(kCFAllocatorDefault, &ref);
}

CFTypeRef CopyObject(Object *object) {
    if (IsA(object, "MemoryBlock"))
        return CopyBlock(object);
    if (LoadObjectMethod(object, "TrueItem(Index as integer) as Folderitem"))
        return CopyFolderItem(object);
    if (IsA(object, "Dictionary"))
        return CopyDictionary(object);
    return nullptr;
}

CFTypeRef CopyArray(Object *array) {
    const int32_t upperBound = GetUpperBound(array);
    CFMutableArrayRef list = CFArrayCreateMutable(kCFAllocatorDefault, CFIndex{upperBound} + 1, &kCFTypeArrayCallBacks);
    for (int32_t i = 0; i <= upperBound; i++) {
        if (GetUpperBound(array) < i)
            return list;
        Object *element = nullptr;
        if (Object **elements = ElementsInPlace(array)) {
            element = elements[i];
            if (element)
                LockObject(element);
        } else if (const ObjectGetter get = ObjectGetterOf(array)) {
            element = get(array, i);
        }
        CFTypeRef copy = CopyValue(element);
        if (copy) {
            CFArrayAppendValue(list, copy);
            CFRelease(copy);
        }
        GiveUp(element);
    }
    return list;
}

} // namespace

CFStringRef CopyText(String *string) {
    constexpr CFStringEncoding kUnknown = 0xFFFF;
    if (!string)
        return nullptr;
    CFStringEncoding encoding = GetStringEncoding(string);
    if (encoding != kUnknown) {
        if (atHand.age == Age::kNew)
            if (CFStringRef text = GetStringCFString(string, 0))
                return text;
        if (CFStringRef text = GetStringCFString(string, 0))
            return text;
    } else {
        encoding = kCFStringEncodingMacRoman;
    }
    const bool inPlace = atHand.age == Age::kOld;
    const CFIndex length = inPlace ? string->length : LenB(string);
    const UInt8 *bytes = inPlace ? reinterpret_cast<const UInt8 *>(string->storage) + 1 : GetStringContents(string);
    LockString(string);
    CFStringRef text = CFStringCreateWithBytes(kCFAllocatorDefault, bytes, length, encoding, true);
    UnlockString(string);
    return text;
}

CFTypeRef CopyValue(Object *variant) {
    if (!variant)
        return nullptr;
    const int32_t type = VarType(variant);
    switch (type) {
    case 2: {
        const int32_t value = VariantToInt32(variant);
        return Number(kCFNumberSInt32Type, &value);
    }
    case 3: {
        const int64_t value = VariantToInt64(variant);
        return Number(kCFNumberSInt64Type, &value);
    }
    case 4: {
        const float value = VariantToSingle(variant);
        return Number(kCFNumberFloat32Type, &value);
    }
    case 5: {
        const double value = VariantToDouble(variant);
        return Number(kCFNumberFloat64Type, &value);
    }
    case 7:
        return CopyDate(variant);
    case 9:
        return CopyObject(variant);
    case 11:
        return CFRetain((VariantToInt32(variant) & 0xFF) != 0 ? kCFBooleanTrue : kCFBooleanFalse);
    case 16:
        return CopyColor(VariantToInt32(variant));
    case 4096 + 9:
        return CopyArray(variant);
    default:
        String *string = VariantToString(variant);
        CFStringRef text = TextOrEmpty(string);
        if (string)
            UnlockString(string);
        return text;
    }
}

} // namespace bench::floors
