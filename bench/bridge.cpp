// The bridge: one service call, and strings in both directions.
#include "bench/bare_host.h"

#include "host/services.h"
#include "host/strings.h"

#include <benchmark/benchmark.h>

#include <cstring>

namespace {

using namespace bench;

void ServiceCall(benchmark::State &state) {
    UseBareHost();
    for (auto _ : state)
        REALLockString(SampleString());
}
BENCHMARK(ServiceCall);

void ServiceCallFloor(benchmark::State &state) {
    void (*volatile service)(REALstringStruct *) = LockString;
    for (auto _ : state)
        service(SampleString());
}
BENCHMARK(ServiceCallFloor);

void StringToHost(benchmark::State &state) {
    UseBareHost();
    CFStringRef text = CFSTR("kMDItemContentTypeTre");
    for (auto _ : state)
        benchmark::DoNotOptimize(CFString2RBString(text));
}
BENCHMARK(StringToHost);

void StringToHostFloor(benchmark::State &state) {
    CFStringRef text = CFSTR("kMDItemContentTypeTre");
    for (auto _ : state) {
        char buffer[601] = {};
        if (CFStringGetLength(text) > 0 && CFStringGetCString(text, buffer, 600, kCFStringEncodingUTF8)) {
            REALstringStruct *string = BuildString(buffer, static_cast<int32_t>(std::strlen(buffer)));
            SetStringEncoding(string, kCFStringEncodingUTF8);
            benchmark::DoNotOptimize(string);
        }
    }
}
BENCHMARK(StringToHostFloor);

void StringFromHost(benchmark::State &state) {
    UseBareHost();
    for (auto _ : state)
        CFRelease(RBString2CFString(SampleString()));
}
BENCHMARK(StringFromHost);

void StringFromHostFloor(benchmark::State &state) {
    const UInt8 *bytes = reinterpret_cast<const UInt8 *>("kMDItemContentTypeTre");
    for (auto _ : state) {
        REALstringStruct *string = SampleString();
        const CFStringEncoding encoding = GetStringEncoding(string);
        LockString(string);
        CFStringRef text = CFStringCreateWithBytes(kCFAllocatorDefault, bytes, 21, encoding, true);
        UnlockString(string);
        CFRelease(text);
    }
}
BENCHMARK(StringFromHostFloor);

} // namespace

BENCHMARK_MAIN();
