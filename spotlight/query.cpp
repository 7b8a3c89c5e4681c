// Queries: the methods of MDQueryQTX that run a query and read its results and, at the end, the declaration of the
// class. The declarations are texts of the host's language; the order of the events is the order in which notifications
// address them. Methods raise "NilObjectException" on an object without a query and return the neutral value of their
// result; string and object results are +1.
#include "spotlight/query.h"

#include <algorithm>
#include <iterator>

#include "convert/arrays.h"
#include "convert/values.h"
#include "host/arrays.h"
#include "host/exceptions.h"
#include "host/strings.h"
#include "spotlight/batching_params.h"
#include "spotlight/item.h"
#include "spotlight/query_constructors.h"
#include "spotlight/query_sorting.h"
#include "spotlight/search_scope.h"

MDQueryRef RequireQuery(REALobjectStruct *self) {
    const MDQueryRef query = QueryData(self).Handle;
    if (!query)
        RaiseException("NilObjectException", "MDQuery Reference is nil");
    return query;
}

namespace {

void MDQueryDestructor(REALobjectStruct *self) {
    MDQueryData &data = QueryData(self);
    if (data.Handle) {
        CFNotificationCenterRemoveEveryObserver(CFNotificationCenterGetLocalCenter(), self);
        CFRelease(data.Handle);
    }
    data.Handle = nullptr;
    if (data.Tag)
        REALUnlockObject(data.Tag);
    data.Tag = nullptr;
}

// Running a query and asking what it was made of. Each method is one call of the framework.
bool rbMDQueryExecute(REALobjectStruct *self, int32_t flags) {
    const MDQueryRef query = RequireQuery(self);
    return query && MDQueryExecute(query, static_cast<CFOptionFlags>(flags));
}

void rbMDQueryStop(REALobjectStruct *self) {
    if (const MDQueryRef query = RequireQuery(self))
        MDQueryStop(query);
}

void rbMDQueryDisableUpdates(REALobjectStruct *self) {
    if (const MDQueryRef query = RequireQuery(self))
        MDQueryDisableUpdates(query);
}

void rbMDQueryEnableUpdates(REALobjectStruct *self) {
    if (const MDQueryRef query = RequireQuery(self))
        MDQueryEnableUpdates(query);
}

void rbMDQuerySetMaxCount(REALobjectStruct *self, int32_t size) {
    if (const MDQueryRef query = RequireQuery(self))
        MDQuerySetMaxCount(query, size);
}

bool rbMDQueryIsGatheringComplete(REALobjectStruct *self) {
    const MDQueryRef query = RequireQuery(self);
    return query && MDQueryIsGatheringComplete(query);
}

int32_t rbMDQueryGetResultCount(REALobjectStruct *self) {
    const MDQueryRef query = RequireQuery(self);
    return query ? static_cast<int32_t>(MDQueryGetResultCount(query)) : 0;
}

REALstringStruct *rbMDQueryCopyQueryString(REALobjectStruct *self) {
    const MDQueryRef query = RequireQuery(self);
    if (!query)
        return nullptr;
    const auto text = AdoptCF(MDQueryCopyQueryString(query));
    return CFString2RBString(text.Get());
}

template <CFArrayRef (*copyNames)(MDQueryRef)> _REALarrayString *CopyQueryAttributeNames(REALobjectStruct *self) {
    auto array = NewStringArray();
    const MDQueryRef query = RequireQuery(self);
    return query ? WithStrings(std::move(array), AdoptCF(copyNames(query))) : nullptr;
}

_REALarrayString *rbMDQueryCopyValueListAttributes(REALobjectStruct *self) {
    return CopyQueryAttributeNames<MDQueryCopyValueListAttributes>(self);
}

_REALarrayString *rbMDQueryCopySortingAttributes(REALobjectStruct *self) {
    return CopyQueryAttributeNames<MDQueryCopySortingAttributes>(self);
}

// Results.
MDItemRef QueryResultAt(MDQueryRef query, CFIndex index) {
    return static_cast<MDItemRef>(const_cast<void *>(MDQueryGetResultAtIndex(query, index)));
}

REALobjectStruct *rbMDQueryGetResultAtIndex(REALobjectStruct *self, int32_t index) {
    const MDQueryRef query = RequireQuery(self);
    return query ? NewItemObject(QueryResultAt(query, index)).Give() : nullptr;
}

_REALarrayObject *rbMDQueryGetResultArray(REALobjectStruct *self, int32_t limit) {
    auto array = NewObjectArray();
    const MDQueryRef query = RequireQuery(self);
    if (!query)
        return nullptr;
    const auto resultCount = static_cast<int32_t>(MDQueryGetResultCount(query));
    const int32_t count = limit >= 1 ? std::min(limit, resultCount) : resultCount;
    for (int32_t i = 0; i < count; i++) {
        // Unlike in event arrays, a result without an object keeps its place, so that positions are result indices.
        auto object = NewItemObject(QueryResultAt(query, i));
        REALInsertArrayValueObject(array.Get(), i, object.Get());
        Release(object);
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
    const auto attribute = AdoptCF(RBString2CFString(name));
    const auto wanted = AdoptCF(CopyVariantAsCFType(value));
    if (!attribute || !wanted)
        return 0;
    return static_cast<uint32_t>(MDQueryGetCountOfResultsWithAttributeValue(query, attribute.Get(), wanted.Get()));
}

REALobjectStruct *rbMDQueryGetAttributeValueOfResultAtIndex(REALobjectStruct *self, REALstringStruct *name,
                                                            uint32_t index) {
    const MDQueryRef query = RequireQuery(self);
    if (!query)
        return nullptr;
    const auto attribute = AdoptCF(RBString2CFString(name));
    if (!attribute)
        return nullptr;
    return GetCFTypeAsVariant(
        MDQueryGetAttributeValueOfResultAtIndex(query, attribute.Get(), static_cast<CFIndex>(index)));
}

_REALarrayObject *rbMDQueryCopyValuesOfAttribute(REALobjectStruct *self, REALstringStruct *name) {
    auto array = NewObjectArray();
    const MDQueryRef query = RequireQuery(self);
    if (!query)
        return nullptr;
    const auto attribute = AdoptCF(RBString2CFString(name));
    if (!attribute)
        return array.Give();
    const auto values = AdoptCF(MDQueryCopyValuesOfAttribute(query, attribute.Get()));
    const CFIndex count = values ? CFArrayGetCount(values.Get()) : 0;
    int32_t position = 0;
    for (CFIndex i = 0; i < count; i++) {
        const CFTypeRef value = CFArrayGetValueAtIndex(values.Get(), i);
        if (!value)
            continue;
        auto variant = AdoptHost(GetCFTypeAsVariant(value));
        REALInsertArrayValueObject(array.Get(), position++, variant.Get());
        Release(variant);
    }
    return array.Give();
}

REALproperty MDQueryProperties[] = {
    Stored("Handle", "Integer", offsetof(MDQueryData, Handle)),
    Stored("Tag", "Variant", offsetof(MDQueryData, Tag)),
};

// clang-format off
REALmethodDefinition MDQueryMethods[] = {
    Method("CountOfResultsWithAttributeValue(name as string, Value as variant) as UInt32", rbMDQueryGetCountOfResultsWithAttributeValue),
    Method("AttributeValueOfResultAtIndex(name as string, index as UInt32) as variant", rbMDQueryGetAttributeValueOfResultAtIndex),
    Method("ValuesOfAttribute(name as string) as variant()", rbMDQueryCopyValuesOfAttribute),
    Method("IndexOfResult(it as MDItemQTX) as integer", rbMDQueryGetIndexOfResult),
    Method("Constructor(queryString as string)", rbMDQueryCreate2),
    Method("Constructor(queryString as string, valueListAttributes() as string)", rbMDQueryCreate3),
    Method("Constructor(queryString as string, valueListAttributes() as string, sortingAttributes() as string)", rbMDQueryCreate4),
    Method("Constructor(query as MDQueryQTX, queryString as string)", rbMDQueryCreateSubset3),
    Method("Constructor(query as MDQueryQTX, queryString as string, valueListAttributes() as string)", rbMDQueryCreateSubset4),
    Method("Constructor(query as MDQueryQTX, queryString as string, valueListAttributes() as string, sortingAttributes() as string)", rbMDQueryCreateSubset5),
    Method("ResultAtIndex(index as integer) as MDItemQTX", rbMDQueryGetResultAtIndex),
    Method("Results(limit as integer = -1) as MDItemQTX()", rbMDQueryGetResultArray),
    Accessors("BatchingParameters as MDQueryBatchingParamsQTX", rbMDQueryBatchingParams, rbMDQuerySetBatchingParameters),
    Method("Execute(flags as integer) as boolean", rbMDQueryExecute),
    Method("IsGatheringComplete as boolean", rbMDQueryIsGatheringComplete),
    Method("ResultCount as integer", rbMDQueryGetResultCount),
    Method("ValueListAttributes as string()", rbMDQueryCopyValueListAttributes),
    Method("SortingAttributes as string()", rbMDQueryCopySortingAttributes),
    Method("QueryString as string", rbMDQueryCopyQueryString),
    Method("Stop", rbMDQueryStop),
    Method("DisableUpdates", rbMDQueryDisableUpdates),
    Method("EnableUpdates", rbMDQueryEnableUpdates),
    Method("SetMaxCount(size as integer)", rbMDQuerySetMaxCount),
    Method("SetSearchScope(paths() as folderitem, options() as string)", rbMDQuerySetSearchScope),
    Method("GetSortOptionFlagsForAttribute(fieldName as string) as integer", rbMDQueryGetSortOptionFlagsForAttribute),
    Method("SetSortOptionFlagsForAttribute(fieldName as string, flags as UInt32) as Boolean", rbMDQuerySetSortOptionFlagsForAttribute),
    Method("SetSortOrder(sortingAttrs() as string) as Boolean", rbMDQuerySetSortOrder),
};
// clang-format on

REALconstant MDQueryConstants[] = {
    Constant("kMDQueryReverseSortOrderFlag=1"),
    Constant("kMDQuerySynchronous=1"),
    Constant("kMDQueryWantsUpdates=4"),
    Constant("kMDQueryScopeHome=\"kMDQueryScopeHome\""),
    Constant("kMDQueryScopeComputer=\"kMDQueryScopeComputer\""),
    Constant("kMDQueryScopeNetwork=\"kMDQueryScopeNetwork\""),
    Constant("kMDQueryScopeAllIndexed=\"kMDQueryScopeAllIndexed\""),
    Constant("kMDQueryScopeComputerIndexed=\"kMDQueryScopeComputerIndexed\""),
    Constant("kMDQueryScopeNetworkIndexed=\"kMDQueryScopeNetworkIndexed\""),
};

} // namespace

REALevent MDQueryEvents[kQueryEvents] = {
    Event("Progress(AddedItems() as MDItemQTX, ChangedItems() as MDItemQTX, RemovedItems() as MDItemQTX)"),
    Event("Finish()"),
    Event("Update(AddedItems() as MDItemQTX, ChangedItems() as MDItemQTX, RemovedItems() as MDItemQTX)"),
};

REALclassDefinition MDQueryClass = {
    .name = "MDQueryQTX",
    .dataSize = sizeof(MDQueryData),
    .destructor = MDQueryDestructor,
    .properties = MDQueryProperties,
    .methods = MDQueryMethods,
    .events = MDQueryEvents,
    .constants = MDQueryConstants,
    .mFlags = kClassFlags,
};

static_assert(std::size(MDQueryMethods) == 27 && std::size(MDQueryConstants) == 9);
static_assert(sizeof(MDQueryData) == 8);
