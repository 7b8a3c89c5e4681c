// Start-up on an old host and on a new one, each with a fresh copy of the plugin.
#include "bench/start_up.h"

#include "bench/floor_methods.h"
#include "bench/floor_values.h"
#include "bench/operations.h"

#include <cstring>

namespace bench {

void MeasureStartUp(const Settings &settings, Age age) {
    const Measure measure(settings, "start", age);
    if (!measure.IsWanted())
        return;
    // The records of a plugin that a new host has started are those of the library, but for a few numbers.
    BecomeHost(Age::kNew);
    const Plugin given(settings.plugin, Age::kNew);
    given.EntryPoint()(Resolve);
    floors::StartUpRecords &records = floors::startUpRecords;
    const char *const names[] = {"MDItemQTX", "MDQueryQTX", "MDQueryBatchingParamsQTX"};
    for (size_t i = 0; const char *name : names) {
        std::memcpy(records.classes[i], ClassRecord(name), sizeof records.classes[i]);
        i++;
    }
    std::memcpy(records.globalMethod, GlobalMethod(), sizeof records.globalMethod);

    BecomeHost(age);
    floors::atHand.age = age;
    const Plugin plugin(settings.plugin, age);
    measure.Once({"start-up"}, plugin.EntryPoint(), floors::StartUp);
}

} // namespace bench
