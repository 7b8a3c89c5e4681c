#include "spotlight/query_constructors.h"

#include "convert/arrays.h"
#include "host/owned.h"
#include "host/strings.h"
#include "spotlight/query.h"
#include "spotlight/query_events.h"

namespace {

/// Converts the constructor's arguments, lets `create` make a query of them, and keeps what it makes, null included.
template <class Create>
void ConstructQuery(REALobjectStruct *self, REALstringStruct *queryString, _REALarrayString *valueListAttributes,
                    _REALarrayString *sortingAttributes, Create create) {
    auto text = AdoptCF(RBString2CFString(queryString));
    if (!text)
        return;
    auto sorting = AdoptCF(NewCFStringArray(sortingAttributes));
    auto valueList = AdoptCF(NewCFStringArray(valueListAttributes));
    const MDQueryRef query = create(text.Get(), valueList.Get(), sorting.Get());
    QueryData(self).Handle = query;
    if (query)
        ObserveQuery(self, query);
    Release(sorting, valueList, text);
}

} // namespace

void rbMDQueryCreate4(REALobjectStruct *self, REALstringStruct *queryString, _REALarrayString *valueListAttributes,
                      _REALarrayString *sortingAttributes) {
    ConstructQuery(self, queryString, valueListAttributes, sortingAttributes,
                   [](CFStringRef text, CFArrayRef valueList, CFArrayRef sorting) {
                       return MDQueryCreate(kCFAllocatorDefault, text, valueList, sorting);
                   });
}

void rbMDQueryCreate3(REALobjectStruct *self, REALstringStruct *queryString, _REALarrayString *valueListAttributes) {
    rbMDQueryCreate4(self, queryString, valueListAttributes, nullptr);
}

void rbMDQueryCreate2(REALobjectStruct *self, REALstringStruct *queryString) {
    rbMDQueryCreate4(self, queryString, nullptr, nullptr);
}

void rbMDQueryCreateSubset5(REALobjectStruct *self, REALobjectStruct *query, REALstringStruct *queryString,
                            _REALarrayString *valueListAttributes, _REALarrayString *sortingAttributes) {
    // Deliberate: a source without a query raises nothing; the new object stays without one too.
    const MDQueryRef source = query ? QueryData(query).Handle : nullptr;
    if (!source)
        return;
    ConstructQuery(self, queryString, valueListAttributes, sortingAttributes,
                   [source](CFStringRef text, CFArrayRef valueList, CFArrayRef sorting) {
                       return MDQueryCreateSubset(kCFAllocatorDefault, source, text, valueList, sorting);
                   });
}

void rbMDQueryCreateSubset4(REALobjectStruct *self, REALobjectStruct *query, REALstringStruct *queryString,
                            _REALarrayString *valueListAttributes) {
    rbMDQueryCreateSubset5(self, query, queryString, valueListAttributes, nullptr);
}

void rbMDQueryCreateSubset3(REALobjectStruct *self, REALobjectStruct *query, REALstringStruct *queryString) {
    rbMDQueryCreateSubset5(self, query, queryString, nullptr, nullptr);
}
