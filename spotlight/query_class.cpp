// The declaration of MDQueryQTX. The texts are the host's language; the order of the events is the order in which
// notifications address them.
#include <iterator>

#include "spotlight/query_data.h"
#include "spotlight/query_methods.h"

namespace {

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

REALevent MDQueryEvents[3] = {
    Event("Progress(AddedItems() as MDItemQTX, ChangedItems() as MDItemQTX, RemovedItems() as MDItemQTX)"),
    Event("Finish()"),
    Event("Update(AddedItems() as MDItemQTX, ChangedItems() as MDItemQTX, RemovedItems() as MDItemQTX)"),
};

REALclassDefinition MDQueryClass = {
    .version = 13,
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
