// Values and results: a number through the type tables, and the item arrays of an event.
#include "bench/bare_host.h"

#include "convert/to_host.h"
#include "spotlight/item.h"

#include <CoreServices/CoreServices.h>

#include <benchmark/benchmark.h>

namespace {

using namespace bench;

void NumberToHost(benchmark::State &state) {
    UseBareHost();
    const int32_t value = 12345;
    CFNumberRef number = CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &value);
    for (auto _ : state)
        benchmark::DoNotOptimize(GetCFTypeAsVariant(number));
    CFRelease(number);
}
BENCHMARK(NumberToHost);

void NumberToHostFloor(benchmark::State &state) {
    const int32_t value = 12345;
    CFNumberRef number = CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &value);
    for (auto _ : state) {
        const CFTypeID type = CFGetTypeID(number);
        if (type != CFURLGetTypeID() && type != CFBooleanGetTypeID() && type == CFNumberGetTypeID() &&
            !CFNumberIsFloatType(number) && CFNumberGetByteSize(number) <= 4) {
            int32_t read = 0;
            CFNumberGetValue(number, kCFNumberLongType, &read);
            benchmark::DoNotOptimize(bench::IntegerToVariant(read));
        }
    }
    CFRelease(number);
}
BENCHMARK(NumberToHostFloor);

/// An array of items of this file, as an event brings it.
CFMutableArrayRef Items(int64_t count) {
    CFURLRef url =
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, CFSTR("/etc/passwd"), kCFURLPOSIXPathStyle, false);
    MDItemRef item = MDItemCreateWithURL(kCFAllocatorDefault, url);
    CFMutableArrayRef items = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    for (int64_t i = 0; i < count; i++)
        CFArrayAppendValue(items, item);
    CFRelease(item);
    CFRelease(url);
    return items;
}

void EventItems(benchmark::State &state) {
    UseBareHost();
    CFMutableArrayRef items = Items(state.range());
    for (auto _ : state)
        const auto array = ConvertArray(items);
    state.SetItemsProcessed(state.iterations() * state.range());
    state.SetComplexityN(state.range());
    CFRelease(items);
}
BENCHMARK(EventItems)->Arg(100)->Arg(1000)->Arg(10000)->Complexity(benchmark::oN);

void EventItemsFloor(benchmark::State &state) {
    CFMutableArrayRef items = Items(state.range());
    for (auto _ : state) {
        _REALarray *array = CreateArray(4, -1);
        const CFIndex count = CFArrayGetCount(items);
        for (CFIndex i = 0; i < count; i++) {
            REALobjectStruct *object = NewInstance("MDItemQTX");
            CFRetain(CFArrayGetValueAtIndex(items, i));
            InsertObject(array, static_cast<int32_t>(i), object);
            UnlockObject(object);
        }
        UnlockObject(array);
    }
    state.SetItemsProcessed(state.iterations() * state.range());
    CFRelease(items);
}
BENCHMARK(EventItemsFloor)->Arg(100)->Arg(1000)->Arg(10000);

} // namespace
