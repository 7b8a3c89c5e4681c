// The life of a query: made, executed once, gathering, live, stopped, gone.
#include "simulator/macos/CoreFoundation/run_loop.h"
#include "tests/simulator/macos/query/support/scripted_query.h"

#include <doctest/doctest.h>

namespace sim::macos {

namespace {

CFRef<MDQueryRef> Made(std::string_view expression) {
    return CFRef<MDQueryRef>::Adopt(MDQueryCreate(nullptr, MakeString(expression).Get(), nullptr, nullptr));
}

} // namespace

TEST_CASE("an empty or malformed expression gives no query") {
    tests::Balanced balance;
    CHECK_FALSE(Made(""));
    CHECK_FALSE(Made("   "));
    CHECK_FALSE(Made("kMDItemFSName =="));
    CHECK_FALSE(Made("(a == 1"));
    CHECK(Made("a == 1"));
}

TEST_CASE("a query has the type of queries and counts references") {
    tests::Balanced balance;
    const auto query = Made("a == 1");
    CHECK(CFGetTypeID(query.Get()) == MDQueryGetTypeID());
    CHECK(MDQueryGetTypeID() != MDItemGetTypeID());
    CHECK(CFGetRetainCount(query.Get()) == 1);
}

TEST_CASE("a query gives back copies of what it was made with") {
    tests::Balanced balance;
    const auto text = MakeString("a == 1");
    const auto values = CFRef<CFMutableArrayRef>::Adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    CFArrayAppendValue(values.Get(), MakeString("kMDItemKind").Get());
    const auto query = CFRef<MDQueryRef>::Adopt(
        MDQueryCreate(nullptr, text.Get(), values.Get(), Names({"kMDItemFSName", "kMDItemFSSize"}).Get()));
    CFArrayAppendValue(values.Get(), MakeString("kMDItemTitle").Get()); // comes too late

    const auto gotText = CFRef<CFStringRef>::Adopt(MDQueryCopyQueryString(query.Get()));
    const auto gotValues = CFRef<CFArrayRef>::Adopt(MDQueryCopyValueListAttributes(query.Get()));
    const auto gotSorting = CFRef<CFArrayRef>::Adopt(MDQueryCopySortingAttributes(query.Get()));
    CHECK(CFEqual(gotText.Get(), text.Get()));
    CHECK(CFEqual(gotValues.Get(), Names({"kMDItemKind"}).Get()));
    CHECK(CFEqual(gotSorting.Get(), Names({"kMDItemFSName", "kMDItemFSSize"}).Get()));
}

TEST_CASE("a query made without attribute names has none to give") {
    tests::Balanced balance;
    const auto query = Made("a == 1");
    CHECK(MDQueryCopyValueListAttributes(query.Get()) == nullptr);
    CHECK(MDQueryCopySortingAttributes(query.Get()) == nullptr);
}

TEST_CASE("before it is executed a query has no results and is not complete") {
    ScriptedQuery scripted({"a"});
    scripted.store.Run(10000);
    CHECK(scripted.query.Count() == 0);
    CHECK_FALSE(scripted.query.IsComplete());
    CHECK(scripted.listener.heard.empty());
    CHECK(MDQueryGetResultAtIndex(scripted.query.Get(), 0) == nullptr);
}

TEST_CASE("an asynchronous query returns at once and gathers only while the run loop runs") {
    ScriptedQuery scripted({"a", "b"});
    CHECK(scripted.query.Execute(0));
    CHECK(scripted.query.Count() == 0);
    CHECK_FALSE(scripted.query.IsComplete());
    CHECK(scripted.listener.heard.empty());
    scripted.Settle();
    CHECK(scripted.query.Results() == FileNames{"a", "b"});
    CHECK(scripted.query.IsComplete());
    CHECK(scripted.listener.heard == Notifications{Progress(2), Finish(2)});
}

TEST_CASE("a query that finds nothing just finishes") {
    ScriptedQuery scripted({"a"}, "kMDItemFSName == 'b'");
    CHECK(scripted.query.Execute(0));
    scripted.Settle();
    CHECK(scripted.query.Count() == 0);
    CHECK(scripted.query.IsComplete());
    CHECK(scripted.listener.heard == Notifications{Finish(0)});
}

TEST_CASE("a synchronous query has gathered when the call returns") {
    ScriptedQuery scripted({"a", "b", "c"});
    scripted.store.SetPace(1, 100);
    CHECK(scripted.query.Execute(kMDQuerySynchronous));
    CHECK(scripted.query.Results() == FileNames{"a", "b", "c"});
    CHECK(scripted.query.IsComplete());
    CHECK(scripted.listener.heard == Notifications{Progress(3), Finish(3)});
}

TEST_CASE("a synchronous query lets timers of the run loop fire meanwhile") {
    ScriptedQuery scripted({"a", "b", "c"});
    scripted.store.SetPace(1, 100);
    int fired = 0;
    RunLoop &loop = RunLoop::Current();
    const auto timer = loop.AddTimer(CurrentClock().Now() + 0.15, 0, [&] { ++fired; });
    CHECK(scripted.query.Execute(kMDQuerySynchronous));
    CHECK(fired == 1);
    loop.Remove(timer);
}

TEST_CASE("a synchronous query survives a stop of the run loop it runs") {
    ScriptedQuery scripted({"a", "b"});
    scripted.query.SetBatches({1, kNoLimit, 1, kNoLimit, 1, 0});
    scripted.listener.handler = [](const Notification &, CFDictionaryRef) { CFRunLoopStop(CFRunLoopGetCurrent()); };
    CHECK(scripted.query.Execute(kMDQuerySynchronous));
    CHECK(scripted.query.IsComplete());
    CHECK(scripted.query.Count() == 2);
}

TEST_CASE("a query executes once, then never again") {
    ScriptedQuery scripted({"a"});
    CHECK(scripted.query.Execute(0));
    CHECK_FALSE(scripted.query.Execute(0));
    scripted.Settle();
    CHECK_FALSE(scripted.query.Execute(kMDQuerySynchronous));
    CHECK(scripted.listener.CountOf(Notification::Kind::kFinish) == 1);
}

TEST_CASE("a query that does not want updates hears of none") {
    for (CFOptionFlags flags : {0UL, 1UL}) {
        ScriptedQuery scripted({"a"});
        REQUIRE(scripted.query.Execute(flags));
        scripted.Settle();
        scripted.listener.heard.clear();
        scripted.Add("b");
        scripted.Remove("a");
        scripted.store.Run(10000);
        CHECK(scripted.listener.heard.empty());
        CHECK(scripted.query.Count() == 1);
    }
}

TEST_CASE("wanting updates of a synchronous query is no use") {
    ScriptedQuery scripted({"a"});
    REQUIRE(scripted.query.Execute(kMDQuerySynchronous | kMDQueryWantsUpdates));
    CHECK(scripted.query.IsComplete());
    scripted.listener.heard.clear();
    scripted.Add("b");
    scripted.store.Run(10000);
    CHECK(scripted.listener.heard.empty());
    CHECK(scripted.query.Count() == 1);
}

TEST_CASE("a live query hears of updates until it is stopped") {
    ScriptedQuery scripted({"a"});
    scripted.GoLive();
    scripted.Add("b");
    scripted.Settle();
    CHECK(scripted.listener.heard == Notifications{Update({"b"}, {}, {}, 2)});
    MDQueryStop(scripted.query.Get());
    scripted.Add("c");
    scripted.store.Run(10000);
    CHECK(scripted.listener.heard.size() == 1);
    CHECK(scripted.query.Results() == FileNames{"a", "b"});
    CHECK(scripted.query.IsComplete());
}

TEST_CASE("a query stopped while it gathers never completes and never finishes") {
    ScriptedQuery scripted({"a", "b", "c"});
    scripted.store.SetPace(1, 100);
    scripted.query.SetBatches({1, kNoLimit, 1, kNoLimit, 1, 0});
    REQUIRE(scripted.query.Execute(kMDQueryWantsUpdates));
    scripted.store.Run(150);
    CHECK(scripted.query.Count() == 2);
    MDQueryStop(scripted.query.Get());
    scripted.store.Run(10000);
    CHECK(scripted.query.Count() == 2);
    CHECK_FALSE(scripted.query.IsComplete());
    CHECK(scripted.listener.heard == Notifications{Progress(1), Progress(2)});
    CHECK_FALSE(scripted.query.Execute(0));
}

TEST_CASE("stopping shows what had come in and not been reported, in one more progress notification") {
    ScriptedQuery scripted({"a", "b", "c"});
    scripted.store.SetPace(2, 100);
    REQUIRE(scripted.query.Execute(0));
    scripted.Settle();
    CHECK(scripted.query.Count() == 0);
    MDQueryStop(scripted.query.Get());
    CHECK(scripted.query.Results() == FileNames{"a", "b"});
    CHECK(scripted.listener.heard == Notifications{Progress(2)});
    MDQueryStop(scripted.query.Get());
    CHECK(scripted.listener.heard.size() == 1);
}

TEST_CASE("stopping a live query shows changes that wait for their batch, as an update") {
    ScriptedQuery scripted({"a"});
    scripted.query.SetBatches({kNoLimit, kNoLimit, kNoLimit, kNoLimit, 10, 1000});
    scripted.GoLive();
    scripted.Add("b");
    scripted.Settle();
    CHECK(scripted.listener.heard.empty());
    MDQueryStop(scripted.query.Get());
    CHECK(scripted.listener.heard == Notifications{Update({"b"}, {}, {}, 2)});
}

TEST_CASE("a query stopped before it was executed cannot be executed") {
    ScriptedQuery scripted({"a"});
    MDQueryStop(scripted.query.Get());
    CHECK_FALSE(scripted.query.Execute(0));
    scripted.Settle();
    CHECK(scripted.listener.heard.empty());
}

TEST_CASE("a query released while it gathers or is live is just gone") {
    ScriptedQuery scripted({"a", "b"});
    scripted.store.SetPace(1, 100);
    REQUIRE(scripted.query.Execute(kMDQueryWantsUpdates));
    SUBCASE("before the run loop ran") {}
    SUBCASE("half way") { scripted.store.Run(50); }
    SUBCASE("live") { scripted.store.Run(500); }
    scripted.listener.StopListening();
    scripted.query.Release();
    scripted.Add("c");
    scripted.store.Run(10000);
}

TEST_CASE("a run loop with nothing but an idle query to wait for waits, and with a finished one is finished") {
    ScriptedQuery scripted({"a"});
    CHECK(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false) == kCFRunLoopRunFinished);
    REQUIRE(scripted.query.Execute(0));
    CHECK(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, false) == kCFRunLoopRunFinished);
    CHECK(scripted.query.IsComplete());
    TestQuery live("a == 1");
    REQUIRE(live.Execute(kMDQueryWantsUpdates));
    CHECK(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, false) == kCFRunLoopRunTimedOut);
}

TEST_CASE("the moment that $time counts from is the one of execution") {
    ScriptedQuery scripted({"a"}, "kMDItemFSContentChangeDate >= $time.now");
    scripted.store.Prepare(scripted.files["a"], "kMDItemFSContentChangeDate",
                           Moment(scripted.store.Clock().Now()).Get());
    scripted.GoLive();
    CHECK(scripted.query.Count() == 1);
    scripted.store.Run(5000);
    scripted.Touch("a");
    scripted.Settle();
    CHECK(scripted.query.Count() == 1);
}

} // namespace sim::macos
