// When a query speaks: the six batching parameters, by number and by time.
#include "tests/simulator/macos/query/support/scripted_query.h"

#include <doctest/doctest.h>

#include <string>

namespace sim::macos {

namespace {

void AddFiles(ScriptedQuery &scripted, int count) {
    for (int number = 0; number < count; ++number)
        scripted.Add("file" + std::to_string(1000 + number));
}

std::vector<CFIndex> Counts(const Listener &listener) {
    std::vector<CFIndex> counts;
    for (const Notification &each : listener.heard)
        counts.push_back(each.count);
    return counts;
}

} // namespace

TEST_CASE("batching parameters are given back as they were set") {
    tests::Balanced balance;
    TestQuery query("a == 1");
    query.SetBatches({1, 2, 3, 4, 5, 6});
    const MDQueryBatchingParams got = MDQueryGetBatchingParameters(query.Get());
    CHECK(got.first_max_num == 1);
    CHECK(got.first_max_ms == 2);
    CHECK(got.progress_max_num == 3);
    CHECK(got.progress_max_ms == 4);
    CHECK(got.update_max_num == 5);
    CHECK(got.update_max_ms == 6);
}

TEST_CASE("the first batch has its own number, later ones another") {
    ScriptedQuery scripted({});
    AddFiles(scripted, 10);
    scripted.query.SetBatches({1, kNoLimit, 4, kNoLimit, 1, 0});
    REQUIRE(scripted.query.Execute(0));
    scripted.Settle();
    CHECK(scripted.listener.heard == Notifications{Progress(1), Progress(5), Progress(9), Progress(10), Finish(10)});
}

TEST_CASE("a batch also ends when its time is over, counted from the start or from the last one") {
    ScriptedQuery scripted({});
    AddFiles(scripted, 100);
    scripted.store.SetPace(1, 10);
    scripted.query.SetBatches({kNoLimit, 95, kNoLimit, 205, 1, 0});
    REQUIRE(scripted.query.Execute(0));
    scripted.store.Run(94);
    CHECK(Counts(scripted.listener).empty());
    scripted.store.Run(2);
    CHECK(Counts(scripted.listener) == std::vector<CFIndex>{10}); // at 0, 10, ... 90 ms
    scripted.store.Run(203);
    CHECK(Counts(scripted.listener).size() == 1);
    scripted.store.Run(2);
    CHECK(Counts(scripted.listener) == std::vector<CFIndex>{10, 31});
    scripted.store.Run(10000);
    CHECK(Counts(scripted.listener) == std::vector<CFIndex>{10, 31, 51, 72, 92, 100, 100});
}

TEST_CASE("whichever limit is reached first ends the batch") {
    ScriptedQuery scripted({});
    AddFiles(scripted, 9);
    scripted.store.SetPace(3, 100);
    scripted.query.SetBatches({2, 50, 2, 50, 1, 0});
    REQUIRE(scripted.query.Execute(0));
    scripted.Settle();
    CHECK(Counts(scripted.listener) == std::vector<CFIndex>{2}); // by number
    scripted.store.Run(60);
    CHECK(Counts(scripted.listener) == std::vector<CFIndex>{2, 3}); // by time
}

TEST_CASE("a time that is over with nothing to report lets the next result through at once") {
    ScriptedQuery scripted({"a", "b"});
    scripted.store.Hold();
    scripted.query.SetBatches({kNoLimit, 10, kNoLimit, 10, 1, 0});
    REQUIRE(scripted.query.Execute(0));
    scripted.store.Run(1000);
    CHECK(scripted.listener.heard.empty());
    scripted.store.SetPace(1, 1000);
    scripted.store.Release();
    scripted.Settle();
    CHECK(scripted.listener.heard == Notifications{Progress(1)});
}

TEST_CASE("limits of zero report every result by itself") {
    ScriptedQuery scripted({});
    AddFiles(scripted, 3);
    scripted.query.SetBatches({0, 0, 0, 0, 0, 0});
    REQUIRE(scripted.query.Execute(kMDQueryWantsUpdates));
    scripted.Settle();
    CHECK(scripted.listener.heard == Notifications{Progress(1), Progress(2), Progress(3), Finish(3)});
    scripted.listener.heard.clear();
    scripted.Add("x");
    scripted.Add("y");
    scripted.Settle();
    CHECK(scripted.listener.heard == Notifications{Update({"x"}, {}, {}, 4), Update({"y"}, {}, {}, 5)});
}

TEST_CASE("updates wait for their number or their time, counted from the first change") {
    ScriptedQuery scripted({"a"});
    scripted.query.SetBatches({kNoLimit, kNoLimit, kNoLimit, kNoLimit, 3, 100});
    scripted.GoLive();
    scripted.store.Run(10000);
    scripted.Add("b");
    scripted.store.Run(60);
    scripted.Add("c");
    scripted.store.Run(39);
    CHECK(scripted.listener.heard.empty());
    scripted.store.Run(2);
    CHECK(scripted.listener.heard == Notifications{Update({"b", "c"}, {}, {}, 3)});

    scripted.listener.heard.clear();
    scripted.Add("d");
    scripted.Add("e");
    scripted.Settle();
    CHECK(scripted.listener.heard.empty());
    scripted.Add("f");
    scripted.Settle();
    CHECK(scripted.listener.heard == Notifications{Update({"d", "e", "f"}, {}, {}, 6)});
}

TEST_CASE("a burst of changes comes in batches no larger than the number") {
    ScriptedQuery scripted({});
    scripted.query.SetBatches({kNoLimit, kNoLimit, kNoLimit, kNoLimit, 4, 100});
    scripted.GoLive();
    AddFiles(scripted, 10);
    scripted.Settle();
    CHECK(Counts(scripted.listener) == std::vector<CFIndex>{4, 8});
    scripted.store.Run(100);
    CHECK(Counts(scripted.listener) == std::vector<CFIndex>{4, 8, 10});
}

TEST_CASE("parameters set while a query runs hold for the batch that is being filled") {
    ScriptedQuery scripted({});
    AddFiles(scripted, 4);
    scripted.store.SetPace(1, 10);
    REQUIRE(scripted.query.Execute(0));
    scripted.store.Run(25);
    CHECK(scripted.listener.heard.empty());
    scripted.query.SetBatches({2, kNoLimit, kNoLimit, kNoLimit, 1, 0});
    scripted.Settle();
    CHECK(scripted.listener.heard == Notifications{Progress(2)});
    scripted.store.Run(1000);
    CHECK(scripted.query.IsComplete());
}

TEST_CASE("without parameters of its own a query still reports everything") {
    tests::Balanced balance;
    ScriptedStore store;
    for (int number = 0; number < 3000; ++number)
        store.Add("/files/" + std::to_string(number));
    TestQuery query("kMDItemFSName == '*'");
    Listener listener(query.Get());
    REQUIRE(query.Execute(0));
    store.Run(60000);
    CHECK(query.Count() == 3000);
    CHECK(listener.HasFinished());
    CHECK(listener.heard.size() > 2); // in batches of some kind
}

} // namespace sim::macos
