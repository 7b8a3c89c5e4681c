// The program that ./dev bench runs under callgrind, once for each build of the library.
//
//   bench-floor PLUGIN LARGEST [GROUP...]
#include "bench/floor_values.h"
#include "bench/measure.h"

#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>

namespace {

void MeasureOn(const bench::Settings &settings, bench::Age age) {
    bench::MeasureStartUp(settings, age);
    bench::BecomeHost(age);
    bench::Plugin plugin(settings.plugin, age);
    plugin.EntryPoint()(bench::Resolve);
    bench::floors::atHand = {age, bench::ClassRecord("MDQueryQTX"), bench::ClassRecord("MDItemQTX")};
    bench::MeasureCalls(settings, plugin);
    bench::MeasureStrings(settings, plugin);
    bench::MeasureResults(settings, plugin);
    bench::MeasureLists(settings, plugin);
    bench::MeasureVariants(settings, plugin);
    std::printf("requests|%s|%d\n", age == bench::Age::kOld ? "old" : "new", bench::MostRequestsOfOneName());
}

} // namespace

int main(int count, char **arguments) {
    if (count < 3) {
        std::fputs("usage: bench-floor PLUGIN LARGEST [GROUP...]\n", stderr);
        return 2;
    }
    bench::Settings settings = {arguments[1], {arguments + 3, arguments + count}, std::atoi(arguments[2])};
    CALLGRIND_START_INSTRUMENTATION;
    MeasureOn(settings, bench::Age::kOld);
    MeasureOn(settings, bench::Age::kNew);
    return 0;
}
