#include "spotlight/batching_params.h"

#include "host/owned.h"
#include "spotlight/classes.h"
#include "spotlight/query.h"

namespace {

// The instance data is the framework's own structure: six words in this order, one for each property.
using Params = MDQueryBatchingParams;
static_assert(sizeof(Params) == 6 * kWord);
static_assert(offsetof(Params, first_max_num) == 0 * kWord && offsetof(Params, first_max_ms) == 1 * kWord);
static_assert(offsetof(Params, progress_max_num) == 2 * kWord && offsetof(Params, progress_max_ms) == 3 * kWord);
static_assert(offsetof(Params, update_max_num) == 4 * kWord && offsetof(Params, update_max_ms) == 5 * kWord);

Params &ParamsOf(REALobjectStruct *parameters) { return InstanceData<Params>(parameters, MDQueryBatchingParamsClass); }

REALproperty MDQueryBatchingParamsProperties[] = {
    Stored("firstMaxNum", "Integer", offsetof(Params, first_max_num)),
    Stored("firstMaxMS", "Integer", offsetof(Params, first_max_ms)),
    Stored("progressMaxNum", "Integer", offsetof(Params, progress_max_num)),
    Stored("progressMaxMS", "Integer", offsetof(Params, progress_max_ms)),
    Stored("updateMaxNum", "Integer", offsetof(Params, update_max_num)),
    Stored("updateMaxMS", "Integer", offsetof(Params, update_max_ms)),
};

} // namespace

REALclassDefinition MDQueryBatchingParamsClass = {
    .name = "MDQueryBatchingParamsQTX",
    .dataSize = sizeof(Params),
    .properties = MDQueryBatchingParamsProperties,
    .mFlags = kClassFlags,
};

REALobjectStruct *rbMDQueryBatchingParams(REALobjectStruct *self) {
    const MDQueryRef query = RequireQuery(self);
    if (!query)
        return nullptr;
    const Params current = MDQueryGetBatchingParameters(query);
    auto parameters = AdoptHost(REALnewInstance("MDQueryBatchingParamsQTX"));
    if (parameters)
        ParamsOf(parameters.Get()) = current;
    return parameters.Give();
}

void rbMDQuerySetBatchingParameters(REALobjectStruct *self, REALobjectStruct *parameters) {
    const MDQueryRef query = RequireQuery(self);
    if (query && parameters)
        MDQuerySetBatchingParameters(query, ParamsOf(parameters));
}
