#include "bench/floor_values.h"

#include <ApplicationServices/ApplicationServices.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace bench::floors {

namespace {

String *BuildUTF8(CFStringRef text, char *buffer, CFIndex size) {
    if (!CFStringGetCString(text, buffer, size, kCFStringEncodingUTF8))
        return nullptr;
    String *string = BuildString(buffer, static_cast<int32_t>(std::strlen(buffer)));
    SetStringEncoding(string, kCFStringEncodingUTF8);
    return string;
}

Object *NumberVariant(CFNumberRef number) {
    double real = 0;
    if (CFNumberIsFloatType(number) && CFNumberGetValue(number, kCFNumberDoubleType, &real))
        return DoubleToVariant(real);
    int32_t narrow = 0;
    if (CFNumberGetByteSize(number) <= 4 && CFNumberGetValue(number, kCFNumberLongType, &narrow))
        return IntegerToVariant(narrow);
    int64_t wide = 0;
    return CFNumberGetValue(number, kCFNumberLongLongType, &wide) ? Int64ToVariant(wide) : nullptr;
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
        if (Object **elements = ElementsInPlace(array)) {
            if (element)
                LockObject(element);
            if (Object *previous = std::exchange(elements[i], nullptr))
                UnlockObject(previous);
            elements[i] = element;
        } else if (const ObjectSetter set = ObjectSetterOf(array)) {
            set(array, element, static_cast<int32_t>(i));
        }
        GiveUp(element);
    }
    return array;
}

void SetPair(const void *key, const void *value, void *context) {
    auto *dictionary = static_cast<Object *>(context);
    if (!key || !dictionary)
        return;
    Object *hostValue = VariantOf(value);
    Object *hostKey = VariantOf(key);
    methods.LoadFor(dictionary);
    if (methods.set)
        methods.set(dictionary, hostKey, hostValue);
    GiveUp(hostKey);
    GiveUp(hostValue);
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
    if (!bytes || length < 1)
        return nullptr;
    Object *block = NewMemoryBlock(static_cast<int32_t>(length));
    void *place = block ? GetMemoryBlockPointer(block) : nullptr;
    if (!place)
        return nullptr;
    std::memcpy(place, bytes, static_cast<size_t>(length));
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

} // namespace

void Insert(Object *array, int32_t index, Object *element) {
    if (const ObjectInserter insert = ObjectInserterOf(array))
        insert(array, index, element);
}

String *StringOf(CFStringRef text) {
    constexpr CFIndex kShortLength = 99;
    const CFIndex length = text ? CFStringGetLength(text) : 0;
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
        if (!text)
            return nullptr;
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

Object *ItemObject(MDItemRef item) {
    if (!item)
        return nullptr;
    Object *object = NewInstance("MDItemQTX");
    if (object) {
        *reinterpret_cast<MDItemRef *>(reinterpret_cast<char *>(object) + atHand.itemRecord[4]) = item;
        CFRetain(item);
    }
    return object;
}

Object *ItemArray(CFArrayRef items) {
    Object *array = CreateArray(kObjectElements, -1);
    const CFIndex count = items ? CFArrayGetCount(items) : 0;
    int32_t position = 0;
    for (CFIndex i = 0; i < count; i++) {
        Object *object = ItemObject(static_cast<MDItemRef>(const_cast<void *>(CFArrayGetValueAtIndex(items, i))));
        if (!object)
            continue;
        Insert(array, position++, object);
        UnlockObject(object);
    }
    return array;
}

} // namespace bench::floors
