// Large scopes and large bursts.
#include "simulator/macos/CoreFoundation/run_loop.h"
#include "tests/simulator/macos/query/support/scripted_query.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <set>
#include <string>

namespace sim::macos {

namespace {

constexpr int kManyFiles = 100000;
constexpr int kBurst = 10000;

std::string Name(int number) { return "file " + std::to_string(number); }

/// What a list of notifications names, as one number for each of the three lists.
struct Totals {
    std::size_t added = 0;
    std::size_t changed = 0;
    std::size_t removed = 0;
};

Totals TotalsOf(const Listener &listener) {
    Totals totals;
    for (const Notification &each : listener.heard) {
        totals.added += each.added.size();
        totals.changed += each.changed.size();
        totals.removed += each.removed.size();
    }
    return totals;
}

} // namespace

TEST_CASE("a hundred thousand files gather in batches, sorted, and a burst of ten thousand changes adds up") {
    ScriptedQuery scripted({}, "kMDItemFSName == 'file*' && kMDItemFSSize >= 0", {"kMDItemFSSize"}, {"kMDItemFSSize"});
    for (int number = 0; number < kManyFiles; ++number)
        scripted.store.Prepare(scripted.Add(Name(number)), "kMDItemFSSize", Whole(number * 7919 % kManyFiles).Get());
    scripted.query.SetBatches({100, kNoLimit, 5000, kNoLimit, 1000, 100});
    REQUIRE(scripted.query.Execute(kMDQueryWantsUpdates));
    REQUIRE(RunUntil([&] { return scripted.listener.HasFinished(); }));
    CHECK(scripted.query.Count() == kManyFiles);
    CHECK(scripted.listener.CountOf(Notification::Kind::kProgress) == 21);
    for (CFIndex index = 0; index < kManyFiles; index += 997) {
        const auto value = static_cast<CFNumberRef>(
            MDQueryGetAttributeValueOfResultAtIndex(scripted.query.Get(), MakeString("kMDItemFSSize").Get(), index));
        int size = -1;
        CFNumberGetValue(value, kCFNumberIntType, &size);
        CHECK(size == index);
    }
    CHECK(MDQueryGetCountOfResultsWithAttributeValue(scripted.query.Get(), MakeString("kMDItemFSSize").Get(),
                                                     Whole(77).Get()) == 1);

    for (CFIndex index = 0; index < kManyFiles; ++index)
        MDQueryGetResultAtIndex(scripted.query.Get(), index);
    scripted.listener.heard.clear();
    for (int number = 0; number < kBurst; ++number) {
        switch (number % 4) {
        case 0:
            scripted.store.Prepare(scripted.Add(Name(kManyFiles + number)), "kMDItemFSSize", Whole(number).Get());
            break;
        case 1:
            scripted.Remove(Name(number));
            break;
        default:
            scripted.Touch(Name(number));
        }
    }
    scripted.store.Run(1000);
    const Totals totals = TotalsOf(scripted.listener);
    CHECK(totals.added == kBurst / 4);
    CHECK(totals.removed == kBurst / 4);
    CHECK(totals.changed == kBurst / 2);
    CHECK(scripted.listener.heard.size() == 10);
    CHECK(scripted.query.Count() == kManyFiles);
}

TEST_CASE("other sources of the run loop have their turn while a query gathers") {
    ScriptedQuery scripted({});
    for (int number = 0; number < 20000; ++number)
        scripted.Add(Name(number));
    RunLoop &loop = RunLoop::Current();
    int turns = 0;
    RunLoop::Id source = 0;
    source = loop.AddSource([&] {
        ++turns;
        loop.Signal(source);
    });
    loop.Signal(source);
    REQUIRE(scripted.query.Execute(0));
    REQUIRE(RunUntil([&] { return scripted.listener.HasFinished(); }));
    loop.Remove(source);
    CHECK(scripted.query.Count() == 20000);
    CHECK(turns >= 20);
}

TEST_CASE("ten thousand changes of one file are one change") {
    ScriptedQuery scripted({"a"});
    scripted.query.SetBatches({kNoLimit, kNoLimit, kNoLimit, kNoLimit, 10, 100});
    scripted.GoLive();
    scripted.query.Results();
    for (int change = 0; change < kBurst; ++change)
        scripted.Touch("a");
    scripted.store.Run(1000);
    CHECK(scripted.listener.heard == Notifications{Update({}, {"a"}, {}, 1)});
}

} // namespace sim::macos
