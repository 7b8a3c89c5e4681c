#include "bench/floor_values.h"

#include <ApplicationServices/ApplicationServices.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace bench::floors {

AtHand atHand;

namespace {

// --- Strings ---

String *BuildUTF8(CFStringRef text, char *buffer, CFIndex size) {
    if (!CFStringGetCString(text, buffer, size, kCFStringEncodingUTF8))
        return nullptr;
    String *string = BuildString(buffer, static_cast<int32_t>(std::strlen(buffer)));
    SetStringEncoding(string, kCFStringEncodingUTF8);
    return string;
}

CFStringRef TextOrEmpty(String *string) {
    CFStringRef text = string ? CopyText(string) : nullptr;
    return text ? text : static_cast<CFStringRef>(CFRetain(CFSTR("")));
}

// --- To the host ---

Object *NumberVariant(CFNumberRef number) {
    double real = 0;
    if (CFNumberIsFloatType(number) && CFNumberGetValue(number, kCFNumberDoubleType, &real))
        return DoubleToVariant(real);
    int32_t narrow = 0;
    if (CFNumberGetByteSize(number) <= 4 && CFNumberGetValue(number, kCFNumberLongType, &narrow))
        return IntegerToVariant(narrow);
    int64_t wide = 0;
    CFNumberGetValue(number, kCFNumberLongLongType, &wide);
    return Int64ToVariant(wide);
}

Object *FolderItemOf(CFURLRef url) {
    FSRef item;
    CFURLGetFSRef(url, &item);
    FSCatalogInfo info;
    FSRef parent;
    HFSUniStr255 name;
    FSGetCatalogInfo(&item, kFSCatInfoNodeID, &info, nullptr, nullptr, &parent);
    FSGetCatalogInfo(&item, kFSCatInfoNone, nullptr, &name, nullptr, nullptr);
    FSGetCatalogInfo(&parent, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
    return FolderItemFromParent(&parent, &name);
}

Object *ArrayOf(CFArrayRef values) {
    const CFIndex count = CFArrayGetCount(values);
    Object *array = CreateArray(kObjectElements, static_cast<int32_t>(count - 1));
    for (CFIndex i = 0; i < count; i++) {
        Object *element = VariantOf(CFArrayGetValueAtIndex(values, i));
        if (GetUpperBound(array) < i)
            return array;
        if (atHand.age == Age::kOld) {
            LockObject(element);
            if (Object *previous = array->elements[i])
                UnlockObject(previous);
            array->elements[i] = element;
        } else {
            ObjectSetterOf(array)(array, element, static_cast<int32_t>(i));
        }
        UnlockObject(element);
    }
    return array;
}

using EntrySetter = void (*)(Object *dictionary, Object *key, Object *value);
using EntryGetter = Object *(*)(Object *dictionary, Object *key);
using KeyGetter = Object *(*)(Object *dictionary, int32_t index);

// The functions of the dictionary that was looked at last: one inside another one makes them be loaded again.
struct DictionaryMethods {
    Object *of = nullptr;
    EntrySetter set;
    EntryGetter get;
    KeyGetter key;
} methods;

void LoadMethods(Object *dictionary) {
    if (methods.of == dictionary)
        return;
    methods.of = dictionary;
    methods.set =
        reinterpret_cast<EntrySetter>(LoadObjectMethod(dictionary, "Value(key As Variant, Assigns _value As Variant)"));
    methods.get = reinterpret_cast<EntryGetter>(LoadObjectMethod(dictionary, "Value(key As Variant) As Variant"));
    methods.key = reinterpret_cast<KeyGetter>(LoadObjectMethod(dictionary, "Key(index As Integer) As Variant"));
}

void SetPair(const void *key, const void *value, void *context) {
    auto *dictionary = static_cast<Object *>(context);
    Object *hostValue = VariantOf(value);
    Object *hostKey = VariantOf(key);
    LoadMethods(dictionary);
    methods.set(dictionary, hostKey, hostValue);
    UnlockObject(hostKey);
    UnlockObject(hostValue);
}

Object *DictionaryOf(CFDictionaryRef dictionary) {
    Object *host = NewInstance("Dictionary");
    CFDictionaryApplyFunction(dictionary, SetPair, host);
    methods.of = nullptr;
    return host;
}

Object *BlockOf(CFDataRef data) {
    const UInt8 *bytes = CFDataGetBytePtr(data);
    const CFIndex length = CFDataGetLength(data);
    Object *block = NewMemoryBlock(static_cast<int32_t>(length));
    std::memcpy(GetMemoryBlockPointer(block), bytes, static_cast<size_t>(length));
    LockObject(block);
    UnlockObject(block);
    return block;
}

Object *DateOf(CFDateRef value) {
    using Constructor = void (*)(Object *, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t);
    const CFGregorianDate fields = CFAbsoluteTimeGetGregorianDate(CFDateGetAbsoluteTime(value), nullptr);
    const int32_t second = std::isfinite(fields.second) ? static_cast<int32_t>(fields.second) : 0;
    Object *date = NewInstance("Date");
    const auto construct = reinterpret_cast<Constructor>(
        LoadObjectMethod(date, "Year as Integer, Month as Integer = 1, Day as Integer = 1, hour as Integer = 0, minute "
                               "as Integer = 0, second as Integer = 0"));
    construct(date, fields.year, fields.month, fields.day, fields.hour, fields.minute, second);
    return date;
}

/// An object of a companion plugin: the reference, and the tag behind a word that is the companion's own.
Object *ColorOf(CFTypeRef value) {
    constexpr uint32_t kSignature = 0x52424346;
    struct Wrapper {
        CFTypeRef reference;
        void *untouched;
        uint32_t signature;
    };
    Object *object = NewInstance("CGColorQTX");
    auto *wrapper = reinterpret_cast<Wrapper *>(reinterpret_cast<char *>(object) + atHand.itemRecord[4]);
    wrapper->reference = CGColorRetain(static_cast<CGColorRef>(const_cast<void *>(value)));
    wrapper->signature = kSignature;
    return object;
}

// --- From the host ---

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

CFTypeRef CopyDictionary(Object *dictionary) {
    int32_t count = 0;
    GetPropertyInteger(dictionary, "Count", &count);
    CFMutableDictionaryRef copy = CFDictionaryCreateMutable(kCFAllocatorDefault, count, &kCFTypeDictionaryKeyCallBacks,
                                                            &kCFTypeDictionaryValueCallBacks);
    for (int32_t i = 0; i < count; i++) {
        LoadMethods(dictionary);
        Object *key = methods.key(dictionary, i);
        LoadMethods(dictionary);
        Object *value = methods.get(dictionary, key);
        CFTypeRef copiedKey = CopyValue(key);
        CFTypeRef copiedValue = CopyValue(value);
        CFDictionarySetValue(copy, copiedKey, copiedValue);
        CFRelease(copiedValue);
        CFRelease(copiedKey);
        UnlockObject(key);
        UnlockObject(value);
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
        Object *element;
        if (atHand.age == Age::kOld) {
            element = array->elements[i];
            LockObject(element);
        } else {
            element = ObjectGetterOf(array)(array, i);
        }
        CFTypeRef copy = CopyValue(element);
        UnlockObject(element);
        CFArrayAppendValue(list, copy);
        CFRelease(copy);
    }
    return list;
}

} // namespace

String *StringOf(CFStringRef text) {
    constexpr CFIndex kShortLength = 99;
    const CFIndex length = CFStringGetLength(text);
    if (length <= 0)
        return nullptr;
    if (length <= kShortLength) {
        char buffer[601] = {};
        return BuildUTF8(text, buffer, 600);
    }
    auto *buffer = static_cast<char *>(std::calloc(static_cast<size_t>(length * 6), 1));
    String *string = BuildUTF8(text, buffer, length * 6);
    std::free(buffer);
    return string;
}

CFStringRef CopyText(String *string) {
    const CFStringEncoding encoding = GetStringEncoding(string);
    if (atHand.age == Age::kNew)
        if (CFStringRef text = GetStringCFString(string, 0))
            return text;
    if (CFStringRef text = GetStringCFString(string, 0))
        return text;
    const bool inPlace = atHand.age == Age::kOld;
    const CFIndex length = inPlace ? string->length : LenB(string);
    const UInt8 *bytes = inPlace ? reinterpret_cast<const UInt8 *>(string->storage) + 1 : GetStringContents(string);
    LockString(string);
    CFStringRef text = CFStringCreateWithBytes(kCFAllocatorDefault, bytes, length, encoding, true);
    UnlockString(string);
    return text;
}

Object *VariantOf(CFTypeRef value) {
    if (!value || value == kCFNull)
        return nullptr;
    const CFTypeID type = CFGetTypeID(value);
    if (type == CFURLGetTypeID())
        return FolderItemOf(static_cast<CFURLRef>(value));
    if (type == CFBooleanGetTypeID())
        return BooleanToVariant(CFBooleanGetValue(static_cast<CFBooleanRef>(value)));
    if (type == CFNumberGetTypeID())
        return NumberVariant(static_cast<CFNumberRef>(value));
    if (type == CFArrayGetTypeID())
        return ArrayOf(static_cast<CFArrayRef>(value));
    if (type == CFNullGetTypeID())
        return nullptr;
    if (type == CFDictionaryGetTypeID())
        return DictionaryOf(static_cast<CFDictionaryRef>(value));
    if (type == CFStringGetTypeID()) {
        String *text = StringOf(static_cast<CFStringRef>(value));
        Object *variant = StringToVariant(text);
        UnlockString(text);
        return variant;
    }
    if (type == CFDataGetTypeID())
        return BlockOf(static_cast<CFDataRef>(value));
    if (type == CFDateGetTypeID())
        return DateOf(static_cast<CFDateRef>(value));
    if (type == CGColorSpaceGetTypeID())
        return nullptr;
    if (type == CGColorGetTypeID())
        return ColorOf(value);
    return nullptr;
}

CFTypeRef CopyValue(Object *variant) {
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
        UnlockString(string);
        return text;
    }
}

Object *ItemObject(MDItemRef item) {
    Object *object = NewInstance("MDItemQTX");
    *reinterpret_cast<MDItemRef *>(reinterpret_cast<char *>(object) + atHand.itemRecord[4]) = item;
    CFRetain(item);
    return object;
}

Object *ItemArray(CFArrayRef items) {
    Object *array = CreateArray(kObjectElements, -1);
    const CFIndex count = items ? CFArrayGetCount(items) : 0;
    for (CFIndex i = 0; i < count; i++) {
        Object *object = ItemObject(static_cast<MDItemRef>(const_cast<void *>(CFArrayGetValueAtIndex(items, i))));
        ObjectInserterOf(array)(array, static_cast<int32_t>(i), object);
        UnlockObject(object);
    }
    return array;
}

} // namespace bench::floors
