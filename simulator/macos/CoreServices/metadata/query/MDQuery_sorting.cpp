// The three sorting functions. Programs find them by name at run time; which of them a system seems to have is decided
// where names are looked up.
#include "simulator/macos/CoreServices/metadata/query/query.h"

using sim::macos::query::Query;

uint32_t MDQueryGetSortOptionFlagsForAttribute(MDQueryRef query, CFStringRef fieldName) {
    return Query::From(query).SortFlags(fieldName);
}

Boolean MDQuerySetSortOptionFlagsForAttribute(MDQueryRef query, CFStringRef fieldName, uint32_t flags) {
    return Query::From(query).SetSortFlags(fieldName, flags);
}

Boolean MDQuerySetSortOrder(MDQueryRef query, CFArrayRef sortingAttributes) {
    return Query::From(query).SetSortOrder(sortingAttributes);
}
