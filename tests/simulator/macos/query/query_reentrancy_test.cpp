// What a program may do while it is being notified: anything.
#include "tests/simulator/macos/query/support/scripted_query.h"

#include <doctest/doctest.h>

#include <memory>

namespace sim::macos {

namespace {

constexpr MDQueryBatchingParams kOneByOne{1, kNoLimit, 1, kNoLimit, 1, 0};

} // namespace

TEST_CASE("a handler may stop the query while it gathers: the rest of what came in follows at once, and no finish") {
    ScriptedQuery scripted({"a", "b", "c", "d"});
    scripted.query.SetBatches({1, kNoLimit, 1, kNoLimit, 1, 0});
    scripted.store.SetPace(2, 100);
    REQUIRE(scripted.query.Execute(kMDQueryWantsUpdates));
    int depth = 0;
    int deepest = 0;
    scripted.listener.handler = [&](const Notification &, CFDictionaryRef) {
        deepest = std::max(deepest, ++depth);
        MDQueryStop(scripted.query.Get());
        --depth;
    };
    scripted.store.Run(10000);
    CHECK(scripted.listener.heard == Notifications{Progress(1)});
    CHECK_FALSE(scripted.query.IsComplete());
    CHECK(deepest == 1);
}

TEST_CASE("a stop from a handler posts what is left from within, and only once") {
    ScriptedQuery scripted({"a", "b"});
    scripted.GoLive();
    scripted.query.SetBatches({1, 0, 1, 0, 2, 0});
    int depth = 0;
    std::vector<int> depths;
    scripted.listener.handler = [&](const Notification &, CFDictionaryRef) {
        depths.push_back(++depth);
        MDQueryStop(scripted.query.Get());
        --depth;
    };
    MDQueryDisableUpdates(scripted.query.Get()); // so that five changes wait
    for (const char *name : {"c", "d", "e", "f", "g"})
        scripted.Add(name);
    scripted.Settle();
    MDQueryEnableUpdates(scripted.query.Get());
    scripted.store.Run(1000);
    CHECK(depths == std::vector<int>{1, 2});
    CHECK(scripted.listener.heard == Notifications{Update({"c", "d"}, {}, {}, 4), Update({"e", "f", "g"}, {}, {}, 7)});
}

TEST_CASE("a handler may stop the query at its finish") {
    ScriptedQuery scripted({"a"});
    scripted.listener.handler = [&](const Notification &heard, CFDictionaryRef) {
        if (heard.kind == Notification::Kind::kFinish)
            MDQueryStop(scripted.query.Get());
    };
    REQUIRE(scripted.query.Execute(kMDQueryWantsUpdates));
    scripted.Settle();
    scripted.Add("b");
    scripted.store.Run(1000);
    CHECK(scripted.query.Count() == 1);
    CHECK(scripted.query.IsComplete());
}

TEST_CASE("a handler sees the results that the notification speaks of") {
    ScriptedQuery scripted({"a", "b", "c"});
    scripted.query.SetBatches(kOneByOne);
    std::vector<FileNames> seen;
    scripted.listener.handler = [&](const Notification &, CFDictionaryRef) {
        seen.push_back(scripted.query.Results());
    };
    REQUIRE(scripted.query.Execute(0));
    scripted.Settle();
    CHECK(seen == std::vector<FileNames>{{"a"}, {"a", "b"}, {"a", "b", "c"}, {"a", "b", "c"}});
}

TEST_CASE("the gathering is complete when the finish is heard, and not before") {
    ScriptedQuery scripted({"a"});
    std::vector<bool> complete;
    scripted.listener.handler = [&](const Notification &, CFDictionaryRef) {
        complete.push_back(scripted.query.IsComplete());
    };
    REQUIRE(scripted.query.Execute(0));
    scripted.Settle();
    CHECK(complete == std::vector<bool>{false, true});
}

TEST_CASE("a handler may give up the last reference to the query") {
    for (const auto kind : {Notification::Kind::kProgress, Notification::Kind::kFinish, Notification::Kind::kUpdate}) {
        ScriptedQuery scripted({"a", "b"});
        scripted.query.SetBatches(kOneByOne);
        scripted.listener.handler = [&](const Notification &heard, CFDictionaryRef) {
            if (heard.kind != kind || !scripted.query.Get())
                return;
            scripted.listener.StopListening();
            scripted.query.Release();
        };
        REQUIRE(scripted.query.Execute(kMDQueryWantsUpdates));
        scripted.store.Run(100);
        scripted.Add("c");
        scripted.store.Run(100);
        CHECK(scripted.listener.heard.back().kind == kind);
        CHECK(scripted.query.Get() == nullptr);
    }
}

TEST_CASE("observers after the one that gives up the last reference still see the query") {
    ScriptedQuery scripted({"a", "b"});
    Listener second(scripted.query.Get());
    scripted.listener.handler = [&](const Notification &, CFDictionaryRef) { scripted.query.Release(); };
    REQUIRE(scripted.query.Execute(kMDQueryWantsUpdates));
    scripted.store.Run(100);
    CHECK(second.heard == Notifications{Progress(2)});
}

TEST_CASE("the last reference may go during a synchronous execution and during a stop") {
    ScriptedQuery scripted({"a", "b"});
    scripted.listener.handler = [&](const Notification &, CFDictionaryRef) {
        scripted.listener.StopListening();
        scripted.query.Release();
    };
    SUBCASE("execution") { CHECK(scripted.query.Execute(kMDQuerySynchronous)); }
    SUBCASE("stop") {
        scripted.store.SetPace(1, 1000);
        REQUIRE(scripted.query.Execute(0));
        scripted.Settle();
        MDQueryStop(scripted.query.Get());
    }
    CHECK(scripted.listener.heard == Notifications{Progress(scripted.listener.heard[0].count)});
    CHECK(scripted.query.Get() == nullptr);
}

TEST_CASE("a handler may execute another query, and wait for it") {
    ScriptedQuery scripted({"a", "b"});
    scripted.query.SetBatches(kOneByOne);
    std::vector<CFIndex> counts;
    scripted.listener.handler = [&](const Notification &, CFDictionaryRef) {
        TestQuery other("kMDItemFSName == 'b'");
        CHECK(other.Execute(kMDQuerySynchronous));
        counts.push_back(other.Count());
    };
    REQUIRE(scripted.query.Execute(0));
    scripted.Settle();
    CHECK(counts == std::vector<CFIndex>{1, 1, 1});
    CHECK(scripted.listener.heard == Notifications{Progress(1), Progress(2), Finish(2)});
}

TEST_CASE("a handler may execute another live query that outlives the first") {
    ScriptedQuery scripted({"a"});
    std::unique_ptr<TestQuery> other;
    std::unique_ptr<Listener> otherListener;
    scripted.listener.handler = [&](const Notification &, CFDictionaryRef) {
        if (other)
            return;
        other = std::make_unique<TestQuery>("kMDItemFSName == '*'");
        other->SetBatches(kOneBatch);
        otherListener = std::make_unique<Listener>(other->Get());
        CHECK(other->Execute(kMDQueryWantsUpdates));
    };
    REQUIRE(scripted.query.Execute(0));
    scripted.Settle();
    scripted.Add("b");
    scripted.Settle();
    CHECK(scripted.query.Count() == 1);
    CHECK(otherListener->heard == Notifications{Progress(1), Finish(1), Update({"b"}, {}, {}, 2)});
}

TEST_CASE("an observer that a handler destroys hears nothing more, and others hear on") {
    ScriptedQuery scripted({"a", "b"});
    scripted.query.SetBatches(kOneByOne);
    auto second = std::make_unique<Listener>(scripted.query.Get());
    Listener third(scripted.query.Get());
    scripted.listener.handler = [&](const Notification &, CFDictionaryRef) { second.reset(); };
    REQUIRE(scripted.query.Execute(0));
    scripted.Settle();
    CHECK(third.heard == scripted.listener.heard);
    CHECK(third.heard == Notifications{Progress(1), Progress(2), Finish(2)});
}

TEST_CASE("a handler may freeze the list until later") {
    ScriptedQuery scripted({"a", "b", "c"});
    scripted.query.SetBatches(kOneByOne);
    scripted.listener.handler = [&](const Notification &heard, CFDictionaryRef) {
        if (heard.count == 1)
            MDQueryDisableUpdates(scripted.query.Get());
    };
    REQUIRE(scripted.query.Execute(0));
    scripted.store.Run(1000);
    CHECK(scripted.listener.heard == Notifications{Progress(1)});
    MDQueryEnableUpdates(scripted.query.Get());
    scripted.store.Run(1000);
    CHECK(scripted.listener.heard == Notifications{Progress(1), Progress(2), Progress(3), Finish(3)});
}

TEST_CASE("a handler may change files, and hears of it later") {
    ScriptedQuery scripted({"a"});
    scripted.GoLive();
    scripted.listener.handler = [&](const Notification &heard, CFDictionaryRef) {
        if (heard.count < 4)
            scripted.Add("file" + std::to_string(heard.count));
    };
    scripted.Add("b");
    scripted.store.Run(100);
    CHECK(scripted.listener.heard ==
          Notifications{Update({"b"}, {}, {}, 2), Update({"file2"}, {}, {}, 3), Update({"file3"}, {}, {}, 4)});
}

TEST_CASE("a handler may run the run loop without being called again from within") {
    ScriptedQuery scripted({"a", "b"});
    scripted.query.SetBatches(kOneByOne);
    int depth = 0;
    int deepest = 0;
    scripted.listener.handler = [&](const Notification &, CFDictionaryRef) {
        deepest = std::max(deepest, ++depth);
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.5, false);
        --depth;
    };
    REQUIRE(scripted.query.Execute(0));
    scripted.store.Run(10000);
    CHECK(deepest == 1);
    CHECK(scripted.listener.heard == Notifications{Progress(1), Progress(2), Finish(2)});
}

} // namespace sim::macos
