// The C interface of queries.
#include "simulator/macos/CoreFoundation/array.h"
#include "simulator/macos/CoreFoundation/text.h"
#include "simulator/macos/CoreServices/metadata/items/item.h"
#include "simulator/macos/CoreServices/metadata/query/asked_values.h"
#include "simulator/macos/CoreServices/metadata/query/query.h"
#include "simulator/macos/CoreServices/metadata/query/scripted_values.h"
#include "simulator/macos/control/faults.h"

#include <CoreServices/MDQuery.h>

#include <vector>

namespace {

using namespace sim::macos;
using query::Query;

const FallibleCall createCall("MDQueryCreate");
const FallibleCall createSubsetCall("MDQueryCreateSubset");
const FallibleCall copyQueryStringCall("MDQueryCopyQueryString");
const FallibleCall copyValueListAttributesCall("MDQueryCopyValueListAttributes");
const FallibleCall copySortingAttributesCall("MDQueryCopySortingAttributes");
const FallibleCall getResultAtIndexCall("MDQueryGetResultAtIndex");
const FallibleCall copyValuesOfAttributeCall("MDQueryCopyValuesOfAttribute");

bool valuesHaveNulls = false;

bool IsIndex(Query &query, CFIndex index) {
    return index >= 0 && static_cast<std::size_t>(index) < query.Results().Count();
}

CFRef<CFArrayRef> WithNulls(const std::vector<CFTypeRef> &values) {
    std::vector<CFTypeRef> elements;
    for (const CFTypeRef value : values) {
        elements.push_back(nullptr);
        elements.push_back(value);
    }
    const auto count = static_cast<CFIndex>(elements.size());
    return CFRef<CFArrayRef>::Adopt(CFArrayCreate(kCFAllocatorDefault, elements.data(), count, nullptr));
}

} // namespace

sim::macos::ValuesWithNulls::ValuesWithNulls() : previous_(valuesHaveNulls) { valuesHaveNulls = true; }

sim::macos::ValuesWithNulls::~ValuesWithNulls() { valuesHaveNulls = previous_; }

CFTypeID MDQueryGetTypeID(void) { return Query::Type(); }

MDQueryRef MDQueryCreate(CFAllocatorRef, CFStringRef queryString, CFArrayRef valueListAttributes,
                         CFArrayRef sortingAttributes) {
    if (createCall.Fails())
        return nullptr;
    const OwnCalls own;
    return Query::Create(nullptr, queryString, valueListAttributes, sortingAttributes);
}

MDQueryRef MDQueryCreateSubset(CFAllocatorRef, MDQueryRef query, CFStringRef queryString,
                               CFArrayRef valueListAttributes, CFArrayRef sortingAttributes) {
    if (createSubsetCall.Fails())
        return nullptr;
    const OwnCalls own;
    return Query::Create(&Query::From(query), queryString, valueListAttributes, sortingAttributes);
}

CFStringRef MDQueryCopyQueryString(MDQueryRef query) {
    if (copyQueryStringCall.Fails())
        return nullptr;
    return CFRef<CFStringRef>::Retain(Query::From(query).Text()).Give();
}

CFArrayRef MDQueryCopyValueListAttributes(MDQueryRef query) {
    if (copyValueListAttributesCall.Fails())
        return nullptr;
    return CFRef<CFArrayRef>::Retain(Query::From(query).ValueNames()).Give();
}

CFArrayRef MDQueryCopySortingAttributes(MDQueryRef query) {
    if (copySortingAttributesCall.Fails())
        return nullptr;
    return CFRef<CFArrayRef>::Retain(Query::From(query).SortNames()).Give();
}

MDQueryBatchingParams MDQueryGetBatchingParameters(MDQueryRef query) { return Query::From(query).BatchingParameters(); }

void MDQuerySetBatchingParameters(MDQueryRef query, MDQueryBatchingParams parameters) {
    Query::From(query).SetBatchingParameters(parameters);
}

void MDQuerySetSearchScope(MDQueryRef query, CFArrayRef scopeDirectories, OptionBits scopeOptions) {
    if (scopeOptions != 0)
        Stop("MDQuerySetSearchScope was called with options, of which there are none.");
    const OwnCalls own;
    Query::From(query).SetScope(scopeDirectories);
}

void MDQuerySetMaxCount(MDQueryRef query, CFIndex size) { Query::From(query).SetMaxCount(size); }

Boolean MDQueryExecute(MDQueryRef query, CFOptionFlags optionFlags) { return Query::From(query).Execute(optionFlags); }

void MDQueryStop(MDQueryRef query) { Query::From(query).Stop(); }

void MDQueryDisableUpdates(MDQueryRef query) { Query::From(query).DisableUpdates(); }

void MDQueryEnableUpdates(MDQueryRef query) { Query::From(query).EnableUpdates(); }

Boolean MDQueryIsGatheringComplete(MDQueryRef query) { return Query::From(query).IsGatheringComplete(); }

CFIndex MDQueryGetResultCount(MDQueryRef query) { return static_cast<CFIndex>(Query::From(query).Results().Count()); }

const void *MDQueryGetResultAtIndex(MDQueryRef query, CFIndex index) {
    Query &asked = Query::From(query);
    if (getResultAtIndexCall.Fails() || !IsIndex(asked, index))
        return nullptr;
    const OwnCalls own;
    return asked.Results().At(static_cast<std::size_t>(index)).Item();
}

CFIndex MDQueryGetIndexOfResult(MDQueryRef query, const void *result) {
    const Item *item = Cast<Item>(result);
    return item ? Query::From(query).Results().IndexOf(item->Source().Identity()) : kCFNotFound;
}

void *MDQueryGetAttributeValueOfResultAtIndex(MDQueryRef query, CFStringRef name, CFIndex index) {
    Query &asked = Query::From(query);
    const auto place = asked.ReadName(name);
    if (!place || !IsIndex(asked, index))
        return nullptr;
    return const_cast<void *>(asked.Results().At(static_cast<std::size_t>(index)).Value(*place));
}

CFArrayRef MDQueryCopyValuesOfAttribute(MDQueryRef query, CFStringRef name) {
    if (copyValuesOfAttributeCall.Fails())
        return nullptr;
    const OwnCalls own;
    const query::ValueList *values = Query::From(query).Values(name);
    if (!values)
        return nullptr;
    return (valuesHaveNulls ? WithNulls(values->Values()) : MakeArray(values->Values())).Give();
}

CFIndex MDQueryGetCountOfResultsWithAttributeValue(MDQueryRef query, CFStringRef name, CFTypeRef value) {
    const OwnCalls own;
    AskedValues::Note(value);
    const query::ValueList *values = Query::From(query).Values(name);
    return values ? values->CountOf(value) : 0;
}
