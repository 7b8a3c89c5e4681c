// The calls that are passed on: no more is done than finding the query or item of the object and asking the system.
#include "bench/bare_metadata.h"
#include "bench/floor_methods.h"
#include "bench/operations.h"

namespace bench {

void MeasureCalls(const Settings &settings, const Plugin &plugin) {
    const Measure measure(settings, "calls", plugin.HostAge());
    if (!measure.IsWanted())
        return;
    const auto text = TextOf("an item");
    Object *query = ObjectWith("MDQueryQTX", CFSTR("a query"));
    Object *item = ObjectWith("MDItemQTX", text.Get());
    const auto name = TextOf("kMDItemFSInvisible");
    SetSampleText("kMDItemFSInvisible", 18, kCFStringEncodingUTF8, name.Get());
    const void *one = text.Get();
    SetAnswers({.results = 1, .item = static_cast<MDItemRef>(const_cast<void *>(one)), .attribute = kCFBooleanTrue});

    const auto compare = [&]<class Result, class... Arguments>(const char *className, const std::string &declaration,
                                                               Result (*floor)(Arguments...),
                                                               std::type_identity_t<Arguments>... arguments) {
        measure({.name = declaration.substr(0, declaration.find_first_of("( ")), .onStack = true},
                plugin.Method<Result (*)(Arguments...)>(className, declaration), floor, arguments...);
    };
    compare("MDQueryQTX", "IsGatheringComplete as boolean", floors::IsGatheringComplete, query);
    compare("MDQueryQTX", "ResultCount as integer", floors::ResultCount, query);
    compare("MDQueryQTX", "Stop", floors::Stop, query);
    compare("MDQueryQTX", "DisableUpdates", floors::DisableUpdates, query);
    compare("MDQueryQTX", "EnableUpdates", floors::EnableUpdates, query);
    compare("MDQueryQTX", "SetMaxCount(size as integer)", floors::SetMaxCount, query, 10);
    compare("MDQueryQTX", "Execute(flags as integer) as boolean", floors::Execute, query, 4);
    compare("MDQueryQTX", "IndexOfResult(it as MDItemQTX) as integer", floors::IndexOfResult, query, item);
    compare("MDQueryQTX", "ResultAtIndex(index as integer) as MDItemQTX", floors::ResultAtIndex, query, 0);
    compare("MDItemQTX", "AttributeBoolean(name as string) as boolean", floors::AttributeBoolean, item, SampleString());
}

} // namespace bench
