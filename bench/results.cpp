// Results and values by the thousand: whole lists that a program asks for, and the items that an update brings.
#include "bench/bare_metadata.h"
#include "bench/floor_methods.h"
#include "bench/operations.h"

namespace bench {

namespace {

constexpr int kSizes[] = {10, 1000, 100'000, 1'000'000};

/// So many times the value.
Ref<CFMutableArrayRef> ListOf(int size, CFTypeRef value) {
    auto list = Ref<CFMutableArrayRef>::Adopt(CFArrayCreateMutable(kCFAllocatorDefault, size, &kCFTypeArrayCallBacks));
    for (int i = 0; i < size; i++)
        CFArrayAppendValue(list.Get(), value);
    return list;
}

void MeasureWholeLists(const Measure &measure, const Plugin &plugin, CFTypeRef item) {
    const auto results = plugin.Method<Object *(*)(Object *, int32_t)>("MDQueryQTX", "Results(");
    const auto values = plugin.Method<Object *(*)(Object *, String *)>("MDQueryQTX", "ValuesOfAttribute(");
    Object *query = ObjectWith("MDQueryQTX", CFSTR("a query"));
    const auto name = TextOf("kMDItemFSSize");
    SetSampleText("kMDItemFSSize", 13, kCFStringEncodingUTF8, name.Get());
    for (const int size : kSizes) {
        if (!measure.IsWanted(size))
            continue;
        const auto list = ListOf(size, NumberOf(12345).Get());
        SetAnswers({.results = size, .item = static_cast<MDItemRef>(const_cast<void *>(item)), .values = list.Get()});
        measure({"Results", size}, results, floors::Results, query, -1);
        measure({"ValuesOfAttribute", size}, values, floors::ValuesOfAttribute, query, SampleString());
    }
}

void MeasureUpdates(const Measure &measure, const Plugin &plugin, CFTypeRef item) {
    const auto text = TextOf("a query");
    SetSampleText("a query", 7, kCFStringEncodingUTF8, text.Get());
    Object *query = NewInstance("MDQueryQTX");
    plugin.Method<void (*)(Object *, String *)>("MDQueryQTX", "Constructor(queryString")(query, SampleString());
    for (const int size : {10, 1000, 10'000}) {
        if (!measure.IsWanted(size))
            continue;
        const auto userInfo = Ref<CFMutableDictionaryRef>::Adopt(CFDictionaryCreateMutable(
            kCFAllocatorDefault, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
        CFDictionarySetValue(userInfo.Get(), kMDQueryUpdateAddedItems, ListOf(size, item).Get());
        measure({"update", size}, LastCallback(), floors::Notify, nullptr, query, kMDQueryDidUpdateNotification,
                nullptr, userInfo.Get());
    }
}

} // namespace

void MeasureResults(const Settings &settings, const Plugin &plugin) {
    const Measure measure(settings, "results", plugin.HostAge());
    if (!measure.IsWanted())
        return;
    const auto item = TextOf("an item");
    MeasureWholeLists(measure, plugin, item.Get());
    MeasureUpdates(measure, plugin, item.Get());
}

} // namespace bench
