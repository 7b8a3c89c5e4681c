// Sort options of a query, on systems that have them.
#include "convert/string_arrays.h"
#include "host/owned.h"
#include "host/strings.h"
#include "spotlight/query_data.h"
#include "spotlight/query_methods.h"
#include "spotlight/sort_functions.h"

constinit decltype(&MDQueryGetSortOptionFlagsForAttribute) myMDQueryGetSortOptionFlagsForAttribute = nullptr;
constinit decltype(&MDQuerySetSortOptionFlagsForAttribute) myMDQuerySetSortOptionFlagsForAttribute = nullptr;
constinit decltype(&MDQuerySetSortOrder) myMDQuerySetSortOrder = nullptr;

int32_t rbMDQueryGetSortOptionFlagsForAttribute(REALobjectStruct *self, REALstringStruct *fieldName) {
    const MDQueryRef query = RequireQuery(self);
    if (!query || !myMDQueryGetSortOptionFlagsForAttribute)
        return 0;
    const auto name = OwnedCF<CFStringRef>::Adopt(RBString2CFString(fieldName));
    return name ? static_cast<int32_t>(myMDQueryGetSortOptionFlagsForAttribute(query, name.Get())) : 0;
}

bool rbMDQuerySetSortOptionFlagsForAttribute(REALobjectStruct *self, REALstringStruct *fieldName, uint32_t flags) {
    const MDQueryRef query = RequireQuery(self);
    // Deliberate: the setter's presence is told by the getter's.
    if (!query || !myMDQueryGetSortOptionFlagsForAttribute)
        return false;
    const auto name = OwnedCF<CFStringRef>::Adopt(RBString2CFString(fieldName));
    return name && myMDQuerySetSortOptionFlagsForAttribute(query, name.Get(), flags);
}

bool rbMDQuerySetSortOrder(REALobjectStruct *self, _REALarrayString *sortingAttributes) {
    const MDQueryRef query = RequireQuery(self);
    if (!query || !myMDQuerySetSortOrder)
        return false;
    const auto names = OwnedCF<CFMutableArrayRef>::Adopt(NewCFStringArray(sortingAttributes));
    return names && myMDQuerySetSortOrder(query, names.Get());
}
