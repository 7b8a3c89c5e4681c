// Running a query and asking what it was made of. Each method is one call of the framework.
#include "convert/string_arrays.h"
#include "host/arrays.h"
#include "host/strings.h"
#include "spotlight/query_data.h"
#include "spotlight/query_methods.h"

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
    const auto text = OwnedCF<CFStringRef>::Adopt(MDQueryCopyQueryString(query));
    return CFString2RBString(text.Get());
}

namespace {

/// The array is made before the query is looked for; without a query nil is returned all the same.
_REALarrayString *CopyAttributeNames(REALobjectStruct *self, CFArrayRef (*copyNames)(MDQueryRef)) {
    auto array = OwnedHost<_REALarrayString>::Adopt(NewStringArray());
    const MDQueryRef query = RequireQuery(self);
    if (!query)
        return nullptr;
    const auto names = OwnedCF<CFArrayRef>::Adopt(copyNames(query));
    if (names)
        AddStringArray(array.Get(), names.Get());
    return array.Give();
}

} // namespace

_REALarrayString *rbMDQueryCopyValueListAttributes(REALobjectStruct *self) {
    return CopyAttributeNames(self, [](MDQueryRef query) { return MDQueryCopyValueListAttributes(query); });
}

_REALarrayString *rbMDQueryCopySortingAttributes(REALobjectStruct *self) {
    return CopyAttributeNames(self, [](MDQueryRef query) { return MDQueryCopySortingAttributes(query); });
}
