// Spotlight queries. A query executes once in its life; its notifications are posted on the local centre with the query
// as object.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_EXTERN_C_BEGIN

typedef struct __MDQuery *MDQueryRef;
typedef enum { kMDQuerySynchronous = 1, kMDQueryWantsUpdates = 4 } MDQueryOptionFlags;
typedef enum { kMDQueryReverseSortOrderFlag = 1 } MDQuerySortOptionFlags;

/// Which limit of a pair is passed first triggers a notification; the times are milliseconds.
typedef struct {
    size_t first_max_num;
    size_t first_max_ms;
    size_t progress_max_num;
    size_t progress_max_ms;
    size_t update_max_num;
    size_t update_max_ms;
} MDQueryBatchingParams;

CF_EXPORT const CFStringRef kMDQueryProgressNotification;
CF_EXPORT const CFStringRef kMDQueryDidFinishNotification;
CF_EXPORT const CFStringRef kMDQueryDidUpdateNotification;
CF_EXPORT const CFStringRef kMDQueryUpdateAddedItems;
CF_EXPORT const CFStringRef kMDQueryUpdateChangedItems;
CF_EXPORT const CFStringRef kMDQueryUpdateRemovedItems;
CF_EXPORT const CFStringRef kMDQueryScopeHome;
CF_EXPORT const CFStringRef kMDQueryScopeComputer;
CF_EXPORT const CFStringRef kMDQueryScopeNetwork;
CF_EXPORT const CFStringRef kMDQueryScopeAllIndexed;
CF_EXPORT const CFStringRef kMDQueryScopeComputerIndexed;
CF_EXPORT const CFStringRef kMDQueryScopeNetworkIndexed;

CFTypeID MDQueryGetTypeID(void);
/// Null for an empty or malformed expression.
MDQueryRef MDQueryCreate(CFAllocatorRef allocator, CFStringRef queryString, CFArrayRef valueListAttributes,
                         CFArrayRef sortingAttributes);
MDQueryRef MDQueryCreateSubset(CFAllocatorRef allocator, MDQueryRef query, CFStringRef queryString,
                               CFArrayRef valueListAttributes, CFArrayRef sortingAttributes);
CFStringRef MDQueryCopyQueryString(MDQueryRef query);
CFArrayRef MDQueryCopyValueListAttributes(MDQueryRef query);
CFArrayRef MDQueryCopySortingAttributes(MDQueryRef query);

MDQueryBatchingParams MDQueryGetBatchingParameters(MDQueryRef query);
void MDQuerySetBatchingParameters(MDQueryRef query, MDQueryBatchingParams parameters);
/// Before execution only. Entries are path strings, URLs or scope constants.
void MDQuerySetSearchScope(MDQueryRef query, CFArrayRef scopeDirectories, OptionBits scopeOptions);
/// Before execution only.
void MDQuerySetMaxCount(MDQueryRef query, CFIndex size);

Boolean MDQueryExecute(MDQueryRef query, CFOptionFlags optionFlags);
void MDQueryStop(MDQueryRef query);
/// A nesting counter with MDQueryEnableUpdates: the result list stands still while it is above zero.
void MDQueryDisableUpdates(MDQueryRef query);
void MDQueryEnableUpdates(MDQueryRef query);
Boolean MDQueryIsGatheringComplete(MDQueryRef query);

CFIndex MDQueryGetResultCount(MDQueryRef query);
/// Borrowed.
const void *MDQueryGetResultAtIndex(MDQueryRef query, CFIndex index);
/// kCFNotFound for an item that is not a result.
CFIndex MDQueryGetIndexOfResult(MDQueryRef query, const void *result);
/// Borrowed; null for an attribute that is in neither the value list nor the sort list.
void *MDQueryGetAttributeValueOfResultAtIndex(MDQueryRef query, CFStringRef name, CFIndex index);
CFArrayRef MDQueryCopyValuesOfAttribute(MDQueryRef query, CFStringRef name);
CFIndex MDQueryGetCountOfResultsWithAttributeValue(MDQueryRef query, CFStringRef name, CFTypeRef value);

// Exported by name only where a system has them: they are looked up at run time, never linked against.
uint32_t MDQueryGetSortOptionFlagsForAttribute(MDQueryRef query, CFStringRef fieldName);
Boolean MDQuerySetSortOptionFlagsForAttribute(MDQueryRef query, CFStringRef fieldName, uint32_t flags);
Boolean MDQuerySetSortOrder(MDQueryRef query, CFArrayRef sortingAttributes);

CF_EXTERN_C_END
