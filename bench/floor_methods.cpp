#include "bench/floor_methods.h"

#include "bench/floor_values.h"

#include <Carbon/Carbon.h>

#include <initializer_list>

namespace bench::floors {

namespace {

template <class Reference> Reference HandleOf(Object *object, const uint32_t *record) {
    return *reinterpret_cast<Reference *>(reinterpret_cast<char *>(object) + record[4]);
}
MDQueryRef QueryOf(Object *object) { return HandleOf<MDQueryRef>(object, atHand.queryRecord); }
MDItemRef ItemOf(Object *object) { return HandleOf<MDItemRef>(object, atHand.itemRecord); }

MDItemRef ResultOf(MDQueryRef query, CFIndex index) {
    return static_cast<MDItemRef>(const_cast<void *>(MDQueryGetResultAtIndex(query, index)));
}

CFArrayRef CopyItems(CFDictionaryRef userInfo, CFStringRef key) {
    const void *items = CFDictionaryGetValue(userInfo, key);
    return static_cast<CFArrayRef>(items ? CFRetain(items) : nullptr);
}

} // namespace

unsigned char IsGatheringComplete(Object *self) {
    const MDQueryRef query = QueryOf(self);
    return query && MDQueryIsGatheringComplete(query);
}
int32_t ResultCount(Object *self) {
    const MDQueryRef query = QueryOf(self);
    return query ? static_cast<int32_t>(MDQueryGetResultCount(query)) : 0;
}
void Stop(Object *self) {
    if (const MDQueryRef query = QueryOf(self))
        MDQueryStop(query);
}
void DisableUpdates(Object *self) {
    if (const MDQueryRef query = QueryOf(self))
        MDQueryDisableUpdates(query);
}
void EnableUpdates(Object *self) {
    if (const MDQueryRef query = QueryOf(self))
        MDQueryEnableUpdates(query);
}
void SetMaxCount(Object *self, int32_t size) {
    if (const MDQueryRef query = QueryOf(self))
        MDQuerySetMaxCount(query, size);
}
unsigned char Execute(Object *self, int32_t flags) {
    const MDQueryRef query = QueryOf(self);
    return query && MDQueryExecute(query, static_cast<CFOptionFlags>(flags));
}

String *QueryString(Object *self) {
    const MDQueryRef query = QueryOf(self);
    if (!query)
        return nullptr;
    CFStringRef text = MDQueryCopyQueryString(query);
    String *string = StringOf(text);
    CFRelease(text);
    return string;
}

int32_t IndexOfResult(Object *self, Object *item) {
    const MDQueryRef query = QueryOf(self);
    const MDItemRef result = query && item ? ItemOf(item) : nullptr;
    return result ? static_cast<int32_t>(MDQueryGetIndexOfResult(query, result)) : 0;
}

Object *ResultAtIndex(Object *self, int32_t index) {
    const MDQueryRef query = QueryOf(self);
    return query ? ItemObject(ResultOf(query, index)) : nullptr;
}

Object *Results(Object *self, int32_t) {
    Object *array = CreateArray(kObjectElements, -1);
    const MDQueryRef query = QueryOf(self);
    const auto count = static_cast<int32_t>(MDQueryGetResultCount(query));
    for (int32_t i = 0; i < count; i++) {
        Object *object = ItemObject(ResultOf(query, i));
        Insert(array, i, object);
        GiveUp(object);
    }
    return array;
}

Object *ValuesOfAttribute(Object *self, String *name) {
    Object *array = CreateArray(kObjectElements, -1);
    const MDQueryRef query = QueryOf(self);
    CFStringRef attribute = CopyText(name);
    CFArrayRef values = MDQueryCopyValuesOfAttribute(query, attribute);
    const CFIndex count = CFArrayGetCount(values);
    int32_t position = 0;
    for (CFIndex i = 0; i < count; i++) {
        CFTypeRef value = CFArrayGetValueAtIndex(values, i);
        if (!value)
            continue;
        Object *variant = VariantOf(value);
        Insert(array, position++, variant);
        GiveUp(variant);
    }
    CFRelease(values);
    CFRelease(attribute);
    return array;
}

uint32_t CountOfResultsWithAttributeValue(Object *self, String *name, Object *value) {
    const MDQueryRef query = QueryOf(self);
    CFStringRef attribute = CopyText(name);
    CFTypeRef wanted = CopyValue(value);
    const CFIndex count =
        attribute && wanted ? MDQueryGetCountOfResultsWithAttributeValue(query, attribute, wanted) : 0;
    if (wanted)
        CFRelease(wanted);
    if (attribute)
        CFRelease(attribute);
    return static_cast<uint32_t>(count);
}

void Notify(CFNotificationCenterRef, void *observer, CFStringRef name, const void *, CFDictionaryRef userInfo) {
    using Handler = void (*)(Object *, Object *, Object *, Object *);
    if (CFStringCompare(name, kMDQueryProgressNotification, 0) == kCFCompareEqualTo ||
        CFStringCompare(name, kMDQueryDidFinishNotification, 0) == kCFCompareEqualTo ||
        CFStringCompare(name, kMDQueryDidUpdateNotification, 0) != kCFCompareEqualTo)
        return;
    auto *self = static_cast<Object *>(observer);
    const auto handler = reinterpret_cast<Handler>(EventInstance(self, 0));
    CFArrayRef added = CopyItems(userInfo, kMDQueryUpdateAddedItems);
    CFArrayRef changed = CopyItems(userInfo, kMDQueryUpdateChangedItems);
    CFArrayRef removed = CopyItems(userInfo, kMDQueryUpdateRemovedItems);
    Object *hostAdded = ItemArray(added);
    Object *hostChanged = ItemArray(changed);
    Object *hostRemoved = ItemArray(removed);
    handler(self, hostAdded, hostChanged, hostRemoved);
    for (Object *array : {hostAdded, hostChanged, hostRemoved})
        UnlockObject(array);
    for (CFArrayRef items : {added, changed, removed})
        if (items)
            CFRelease(items);
}

unsigned char AttributeBoolean(Object *self, String *name) {
    const MDItemRef item = ItemOf(self);
    if (!item)
        return false;
    CFStringRef attribute = CopyText(name);
    CFTypeRef value = MDItemCopyAttribute(item, attribute);
    CFRelease(attribute);
    const bool is = CFGetTypeID(value) == CFBooleanGetTypeID() && CFBooleanGetValue(static_cast<CFBooleanRef>(value));
    CFRelease(value);
    return is;
}

Object *GetAttribute(Object *self, String *name) {
    const MDItemRef item = ItemOf(self);
    if (!item)
        return nullptr;
    CFStringRef attribute = CopyText(name);
    CFTypeRef value = MDItemCopyAttribute(item, attribute);
    Object *variant = VariantOf(value);
    CFRelease(value);
    CFRelease(attribute);
    return variant;
}

int32_t ShowSearchWindow(String *text) {
    CFStringRef copy = CopyText(text);
    const OSStatus status = HISearchWindowShow(copy, 0);
    CFRelease(copy);
    return static_cast<int32_t>(status);
}

} // namespace bench::floors
