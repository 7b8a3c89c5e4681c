#include "spotlight/batching_params.h"

#include "host/owned.h"
#include "spotlight/classes.h"
#include "spotlight/query.h"

namespace {

/// The fields are those of the framework's structure, in its order.
struct MDQueryBatchingParamsData {
    int32_t firstMaxNum;
    int32_t firstMaxMS;
    int32_t progressMaxNum;
    int32_t progressMaxMS;
    int32_t updateMaxNum;
    int32_t updateMaxMS;
};
static_assert(sizeof(MDQueryBatchingParamsData) == 24);

REALproperty MDQueryBatchingParamsProperties[] = {
    Stored("firstMaxNum", "Integer", offsetof(MDQueryBatchingParamsData, firstMaxNum)),
    Stored("firstMaxMS", "Integer", offsetof(MDQueryBatchingParamsData, firstMaxMS)),
    Stored("progressMaxNum", "Integer", offsetof(MDQueryBatchingParamsData, progressMaxNum)),
    Stored("progressMaxMS", "Integer", offsetof(MDQueryBatchingParamsData, progressMaxMS)),
    Stored("updateMaxNum", "Integer", offsetof(MDQueryBatchingParamsData, updateMaxNum)),
    Stored("updateMaxMS", "Integer", offsetof(MDQueryBatchingParamsData, updateMaxMS)),
};

} // namespace

REALclassDefinition MDQueryBatchingParamsClass = {
    .version = 13,
    .name = "MDQueryBatchingParamsQTX",
    .dataSize = sizeof(MDQueryBatchingParamsData),
    .properties = MDQueryBatchingParamsProperties,
    .mFlags = kClassFlags,
};

REALobjectStruct *rbMDQueryBatchingParams(REALobjectStruct *self) {
    const MDQueryRef query = RequireQuery(self);
    if (!query)
        return nullptr;
    const MDQueryBatchingParams batching = MDQueryGetBatchingParameters(query);
    auto parameters = OwnedObject::Adopt(REALnewInstance("MDQueryBatchingParamsQTX"));
    if (parameters)
        InstanceData<MDQueryBatchingParamsData>(parameters.Get(), MDQueryBatchingParamsClass) = {
            static_cast<int32_t>(batching.first_max_num),    static_cast<int32_t>(batching.first_max_ms),
            static_cast<int32_t>(batching.progress_max_num), static_cast<int32_t>(batching.progress_max_ms),
            static_cast<int32_t>(batching.update_max_num),   static_cast<int32_t>(batching.update_max_ms),
        };
    return parameters.Give();
}

void rbMDQuerySetBatchingParameters(REALobjectStruct *self, REALobjectStruct *parameters) {
    const MDQueryRef query = RequireQuery(self);
    if (!query || !parameters)
        return;
    const auto &data = InstanceData<MDQueryBatchingParamsData>(parameters, MDQueryBatchingParamsClass);
    MDQuerySetBatchingParameters(query, {
                                            static_cast<size_t>(data.firstMaxNum),
                                            static_cast<size_t>(data.firstMaxMS),
                                            static_cast<size_t>(data.progressMaxNum),
                                            static_cast<size_t>(data.progressMaxMS),
                                            static_cast<size_t>(data.updateMaxNum),
                                            static_cast<size_t>(data.updateMaxMS),
                                        });
}
