#include "spotlight/query_results.h"

#include "convert/from_host.h"
#include "convert/to_host.h"
#include "host/arrays.h"
#include "host/strings.h"
#include "spotlight/item_data.h"
#include "spotlight/query_data.h"
#include "spotlight/query_methods.h"

namespace {

MDItemRef ResultAt(MDQueryRef query, CFIndex index) {
    return static_cast<MDItemRef>(const_cast<void *>(MDQueryGetResultAtIndex(query, index)));
}

} // namespace

OwnedHost<_REALarrayObject> ConvertArray(CFArrayRef items) {
    auto array = OwnedHost<_REALarrayObject>::Adopt(NewObjectArray());
    const CFIndex count = items ? CFArrayGetCount(items) : 0;
    int32_t position = 0;
    for (CFIndex i = 0; i < count; i++) {
        const auto item = static_cast<MDItemRef>(const_cast<void *>(CFArrayGetValueAtIndex(items, i)));
        if (const auto object = NewItemObject(item))
            REALInsertArrayValueObject(array.Get(), position++, object.Get());
    }
    return array;
}

REALobjectStruct *rbMDQueryGetResultAtIndex(REALobjectStruct *self, int32_t index) {
    const MDQueryRef query = RequireQuery(self);
    return query ? NewItemObject(ResultAt(query, index)).Give() : nullptr;
}

_REALarrayObject *rbMDQueryGetResultArray(REALobjectStruct *self, int32_t limit) {
    auto array = OwnedHost<_REALarrayObject>::Adopt(NewObjectArray());
    const MDQueryRef query = RequireQuery(self);
    if (!query)
        return nullptr;
    const auto resultCount = static_cast<int32_t>(MDQueryGetResultCount(query));
    const int32_t count = limit >= 1 && resultCount > limit ? limit : resultCount;
    for (int32_t i = 0; i < count; i++) {
        // Unlike in event arrays, a result without an object keeps its place, so that positions are result indices.
        const auto object = NewItemObject(ResultAt(query, i));
        REALInsertArrayValueObject(array.Get(), i, object.Get());
    }
    return array.Give();
}

int32_t rbMDQueryGetIndexOfResult(REALobjectStruct *self, REALobjectStruct *item) {
    const MDQueryRef query = RequireQuery(self);
    const MDItemRef result = query ? RequireItem(item) : nullptr;
    return result ? static_cast<int32_t>(MDQueryGetIndexOfResult(query, result)) : 0;
}

uint32_t rbMDQueryGetCountOfResultsWithAttributeValue(REALobjectStruct *self, REALstringStruct *name,
                                                      REALobjectStruct *value) {
    const MDQueryRef query = RequireQuery(self);
    if (!query)
        return 0;
    const auto attribute = OwnedCF<CFStringRef>::Adopt(RBString2CFString(name));
    const auto wanted = OwnedCF<CFTypeRef>::Adopt(CopyVariantAsCFType(value));
    if (!attribute || !wanted)
        return 0;
    return static_cast<uint32_t>(MDQueryGetCountOfResultsWithAttributeValue(query, attribute.Get(), wanted.Get()));
}

REALobjectStruct *rbMDQueryGetAttributeValueOfResultAtIndex(REALobjectStruct *self, REALstringStruct *name,
                                                            uint32_t index) {
    const MDQueryRef query = RequireQuery(self);
    if (!query)
        return nullptr;
    const auto attribute = OwnedCF<CFStringRef>::Adopt(RBString2CFString(name));
    if (!attribute)
        return nullptr;
    return GetCFTypeAsVariant(
        MDQueryGetAttributeValueOfResultAtIndex(query, attribute.Get(), static_cast<CFIndex>(index)));
}

_REALarrayObject *rbMDQueryCopyValuesOfAttribute(REALobjectStruct *self, REALstringStruct *name) {
    auto array = OwnedHost<_REALarrayObject>::Adopt(NewObjectArray());
    const MDQueryRef query = RequireQuery(self);
    if (!query)
        return nullptr;
    const auto attribute = OwnedCF<CFStringRef>::Adopt(RBString2CFString(name));
    if (!attribute)
        return array.Give();
    const auto values = OwnedCF<CFArrayRef>::Adopt(MDQueryCopyValuesOfAttribute(query, attribute.Get()));
    const CFIndex count = values ? CFArrayGetCount(values.Get()) : 0;
    int32_t position = 0;
    for (CFIndex i = 0; i < count; i++) {
        const CFTypeRef value = CFArrayGetValueAtIndex(values.Get(), i);
        if (!value)
            continue;
        const auto variant = OwnedObject::Adopt(GetCFTypeAsVariant(value));
        REALInsertArrayValueObject(array.Get(), position++, variant.Get());
    }
    return array.Give();
}
