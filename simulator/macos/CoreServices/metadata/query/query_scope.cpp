#include "simulator/macos/CoreServices/metadata/query/query_scope.h"

#include "simulator/macos/CoreServices/metadata/query/query.h"

namespace sim::macos {

CFArrayRef SearchScopeOf(MDQueryRef query) { return query::Query::From(query).Scope(); }

} // namespace sim::macos
