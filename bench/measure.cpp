#include "bench/measure.h"

#include <valgrind/callgrind.h>

namespace bench {

namespace {

/// What is counted is what this calls.
[[gnu::noinline]] void CountedLoop(const std::function<void()> &call, int times) {
    for (int i = 0; i < times; i++)
        call();
}

} // namespace

void Measure::Once(const Operation &operation, void (*plugin)(Resolver), void (*floor)(Resolver)) const {
    Count(
        operation, "plugin", [plugin] { plugin(Resolve); }, 1);
    Count(
        operation, "floor", [floor] { floor(Resolve); }, 1);
}

void Measure::Count(const Operation &operation, const char *side, const std::function<void()> &call) const {
    constexpr int kTimes = 20;
    const int times = operation.size < kSmall ? kTimes : 1;
    // The first calls find the services, and fill what the C library keeps of freed memory.
    for (int i = 0; i < times && operation.size <= kSmall; i++)
        call();
    Count(operation, side, call, times);
}

void Measure::Count(const Operation &operation, const char *side, const std::function<void()> &call, int times) const {
    const std::string label = group_ + "|" + operation.name + "|" + std::to_string(operation.size) + "|" +
                              (age_ == Age::kOld ? "old" : "new") + "|" + side + "|" + std::to_string(times) + "|" +
                              (operation.onStack ? "stack" : "");
    CALLGRIND_ZERO_STATS;
    CountedLoop(call, times);
    CALLGRIND_DUMP_STATS_AT(label.c_str());
}

} // namespace bench
