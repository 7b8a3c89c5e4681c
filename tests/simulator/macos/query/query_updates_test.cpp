// What live notifications say: added, changed and removed items, and the list that stands still while updates are
// disabled.
#include "tests/simulator/macos/query/support/scripted_query.h"

#include "simulator/macos/CoreServices/metadata/query/scripted_progress.h"

#include <doctest/doctest.h>

#include <thread>

namespace sim::macos {

TEST_CASE("added items get result objects made for them and are in the update") {
    ScriptedQuery scripted({"a"});
    scripted.GoLive();
    const ledger::Snapshot before = ledger::Take();
    scripted.Add("b");
    scripted.Settle();
    CHECK(scripted.listener.heard == Notifications{Update({"b"}, {}, {}, 2)});
    const auto made = ledger::Since(before).made;
    CHECK(std::count_if(made.begin(), made.end(), [](const auto &entry) { return entry.type == "MDItem"; }) == 1);
}

TEST_CASE("changed and removed items are only named when their result objects had been made") {
    ScriptedQuery scripted({"a", "b", "c", "d"});
    scripted.GoLive();
    MDQueryGetResultAtIndex(scripted.query.Get(), 0);
    MDQueryGetResultAtIndex(scripted.query.Get(), 2);
    scripted.Touch("a");
    scripted.Touch("b");
    scripted.Remove("c");
    scripted.Remove("d");
    scripted.Settle();
    const Notifications together{Update({}, {"a"}, {"c"}, 2)};
    FileNames changed = scripted.listener.AllChanged();
    CHECK(changed == FileNames{"a"});
    CHECK(scripted.listener.AllRemoved() == FileNames{"c"});
    CHECK(scripted.query.Results() == FileNames{"a", "b"});
}

TEST_CASE("changes of results that nobody knows still give a notification, with nothing in it") {
    ScriptedQuery scripted({"a", "b"});
    scripted.GoLive();
    scripted.Remove("a");
    scripted.Settle();
    CHECK(scripted.listener.heard == Notifications{Update({}, {}, {}, 1)});
}

TEST_CASE("a file that comes to fit is added and one that ceases to is removed") {
    ScriptedQuery scripted({"a", "b"}, "kMDItemStarRating >= 3");
    scripted.GoLive();
    CHECK(scripted.query.Count() == 0);
    scripted.store.SetNumber(scripted.files["a"], "kMDItemStarRating", 4);
    scripted.Settle();
    scripted.store.SetNumber(scripted.files["a"], "kMDItemStarRating", 5);
    scripted.Settle();
    scripted.store.SetNumber(scripted.files["a"], "kMDItemStarRating", 1);
    scripted.store.SetNumber(scripted.files["b"], "kMDItemStarRating", 2);
    scripted.Settle();
    CHECK(scripted.listener.heard ==
          Notifications{Update({"a"}, {}, {}, 1), Update({}, {"a"}, {}, 1), Update({}, {}, {"a"}, 0)});
}

TEST_CASE("all that happens to a file within one batch is one change") {
    ScriptedQuery scripted({"stays", "goes"});
    scripted.query.SetBatches({kNoLimit, kNoLimit, kNoLimit, kNoLimit, kNoLimit, 100});
    scripted.GoLive();
    scripted.query.Results();
    scripted.Add("comes");
    scripted.Touch("comes");
    scripted.Add("passes");
    scripted.Touch("passes");
    scripted.Remove("passes");
    scripted.Touch("stays");
    scripted.Touch("stays");
    scripted.Touch("goes");
    scripted.Remove("goes");
    scripted.store.Run(200);
    CHECK(scripted.listener.heard == Notifications{Update({"comes"}, {"stays"}, {"goes"}, 2)});
}

TEST_CASE("a batch in which everything cancels out is not reported") {
    ScriptedQuery scripted({"a"});
    scripted.query.SetBatches({kNoLimit, kNoLimit, kNoLimit, kNoLimit, kNoLimit, 100});
    scripted.GoLive();
    scripted.Add("b");
    scripted.Remove("b");
    scripted.store.Run(1000);
    CHECK(scripted.listener.heard.empty());
}

TEST_CASE("a moved file is changed within the scope, removed out of it and added into it") {
    ScriptedQuery scripted({"a"});
    scripted.query.SetScope({"/files"});
    scripted.GoLive();
    scripted.query.Results();
    scripted.store.Move(scripted.files["a"], "/files/below/b");
    scripted.Settle();
    scripted.store.Move(scripted.files["a"], "/elsewhere/c");
    scripted.Settle();
    scripted.store.Move(scripted.files["a"], "/files/d");
    scripted.Settle();
    CHECK(scripted.listener.heard ==
          Notifications{Update({}, {"b"}, {}, 1), Update({}, {}, {"c"}, 0), Update({"d"}, {}, {}, 1)});
}

TEST_CASE("a removed item is equal to the item that was known and no result any more") {
    ScriptedQuery scripted({"a", "b"});
    scripted.GoLive();
    const auto known = CFRef<CFTypeRef>::Retain(MDQueryGetResultAtIndex(scripted.query.Get(), 0));
    CFRef<CFTypeRef> removed;
    scripted.listener.handler = [&](const Notification &, CFDictionaryRef userInfo) {
        const auto array = static_cast<CFArrayRef>(CFDictionaryGetValue(userInfo, kMDQueryUpdateRemovedItems));
        removed = CFRef<CFTypeRef>::Retain(CFArrayGetValueAtIndex(array, 0));
    };
    scripted.Remove("a");
    scripted.Settle();
    REQUIRE(removed);
    CHECK(CFEqual(removed.Get(), known.Get()));
    CHECK(MDQueryGetIndexOfResult(scripted.query.Get(), known.Get()) == kCFNotFound);
}

TEST_CASE("an item keeps speaking of its file under the new name") {
    ScriptedQuery scripted({"a"});
    scripted.GoLive();
    const void *item = MDQueryGetResultAtIndex(scripted.query.Get(), 0);
    scripted.store.Move(scripted.files["a"], "/files/renamed");
    scripted.Settle();
    CHECK(MDQueryGetResultAtIndex(scripted.query.Get(), 0) == item);
    CHECK(NameOf(item) == "renamed");
}

TEST_CASE("progress leaves out added items and tells of changed and removed ones") {
    ScriptedQuery scripted({"a", "b", "c", "d"});
    scripted.store.SetPace(2, 100);
    scripted.query.SetBatches({2, kNoLimit, 2, kNoLimit, 1, 0});
    REQUIRE(scripted.query.Execute(kMDQueryWantsUpdates));
    scripted.Settle();
    scripted.query.Results();
    scripted.Touch("a");
    scripted.Remove("b");
    scripted.Settle();
    CHECK(scripted.listener.heard ==
          Notifications{Progress(2), {Notification::Kind::kProgress, true, {}, {"a"}, {"b"}, 1}});
    scripted.store.Run(1000);
    CHECK(scripted.query.Results() == FileNames{"a", "c", "d"});
}

TEST_CASE("progress carries added items when it is told to") {
    const ProgressWithAddedItems told;
    ScriptedQuery scripted({"a", "b"});
    REQUIRE(scripted.query.Execute(0));
    scripted.Settle();
    CHECK(scripted.listener.heard ==
          Notifications{{Notification::Kind::kProgress, true, {"a", "b"}, {}, {}, 2}, Finish(2)});
}

TEST_CASE("a file that goes before it was found is never heard of") {
    ScriptedQuery scripted({"a", "b", "c"});
    scripted.store.SetPace(1, 100);
    scripted.query.SetBatches({1, kNoLimit, 1, kNoLimit, 1, 0});
    REQUIRE(scripted.query.Execute(kMDQueryWantsUpdates));
    scripted.Settle();
    scripted.Remove("b");
    scripted.store.Run(1000);
    CHECK(scripted.query.Results() == FileNames{"a", "c"});
    CHECK(scripted.listener.heard == Notifications{Progress(1), Progress(2), Finish(2)});
}

TEST_CASE("while updates are disabled the list stands still, and then catches up") {
    ScriptedQuery scripted({"a", "b"});
    scripted.GoLive();
    scripted.query.Results();
    MDQueryDisableUpdates(scripted.query.Get());
    scripted.Add("c");
    scripted.Touch("a");
    scripted.Remove("b");
    scripted.store.Run(10000);
    CHECK(scripted.listener.heard.empty());
    CHECK(scripted.query.Results() == FileNames{"a", "b"});
    MDQueryEnableUpdates(scripted.query.Get());
    CHECK(scripted.query.Results() == FileNames{"a", "b"}); // only while the run loop runs
    scripted.Settle();
    CHECK(scripted.listener.heard == Notifications{Update({"c"}, {"a"}, {"b"}, 2)});
}

TEST_CASE("disabling counts: as many enablings are needed") {
    ScriptedQuery scripted({"a"});
    scripted.GoLive();
    MDQueryDisableUpdates(scripted.query.Get());
    MDQueryDisableUpdates(scripted.query.Get());
    scripted.Add("b");
    MDQueryEnableUpdates(scripted.query.Get());
    scripted.store.Run(1000);
    CHECK(scripted.query.Count() == 1);
    MDQueryEnableUpdates(scripted.query.Get());
    scripted.Settle();
    CHECK(scripted.query.Count() == 2);
}

TEST_CASE("enabling what is not disabled changes nothing") {
    ScriptedQuery scripted({"a"});
    scripted.GoLive();
    MDQueryEnableUpdates(scripted.query.Get());
    MDQueryEnableUpdates(scripted.query.Get());
    MDQueryDisableUpdates(scripted.query.Get());
    scripted.Add("b");
    scripted.store.Run(1000);
    CHECK(scripted.query.Count() == 1);
    MDQueryEnableUpdates(scripted.query.Get());
}

TEST_CASE("a query whose updates are disabled while it gathers finishes when they are enabled") {
    ScriptedQuery scripted({"a", "b"});
    MDQueryDisableUpdates(scripted.query.Get());
    REQUIRE(scripted.query.Execute(0));
    scripted.store.Run(1000);
    CHECK(scripted.query.Count() == 0);
    CHECK_FALSE(scripted.query.IsComplete());
    CHECK(scripted.listener.heard.empty());
    MDQueryEnableUpdates(scripted.query.Get());
    scripted.Settle();
    CHECK(scripted.listener.heard == Notifications{Progress(2), Finish(2)});
    CHECK(scripted.query.IsComplete());
}

TEST_CASE("a synchronous query whose updates are disabled returns and shows its results later") {
    ScriptedQuery scripted({"a", "b"});
    MDQueryDisableUpdates(scripted.query.Get());
    REQUIRE(scripted.query.Execute(kMDQuerySynchronous));
    CHECK(scripted.query.Count() == 0);
    MDQueryEnableUpdates(scripted.query.Get());
    scripted.Settle();
    CHECK(scripted.query.Count() == 2);
    CHECK(scripted.query.IsComplete());
}

TEST_CASE("stopping while updates are disabled shows the rest when they are enabled") {
    ScriptedQuery scripted({"a"});
    scripted.GoLive();
    MDQueryDisableUpdates(scripted.query.Get());
    scripted.Add("b");
    scripted.Settle();
    MDQueryStop(scripted.query.Get());
    CHECK(scripted.query.Results() == FileNames{"a"});
    scripted.Add("too late");
    MDQueryEnableUpdates(scripted.query.Get());
    scripted.Settle();
    CHECK(scripted.query.Results() == FileNames{"a", "b"});
    CHECK(scripted.listener.heard == Notifications{Update({"b"}, {}, {}, 2)});
    scripted.store.Run(1000);
    CHECK(scripted.listener.heard.size() == 1);
}

TEST_CASE("updates can be disabled and enabled from another thread") {
    ScriptedQuery scripted({"a"});
    scripted.GoLive();
    const auto onAnotherThread = [](auto work) { std::thread(work).join(); };
    onAnotherThread([&] { MDQueryDisableUpdates(scripted.query.Get()); });
    scripted.Add("b");
    scripted.store.Run(1000);
    CHECK(scripted.query.Count() == 1);
    onAnotherThread([&] { MDQueryEnableUpdates(scripted.query.Get()); });
    scripted.Settle();
    CHECK(scripted.query.Count() == 2);
}

TEST_CASE("two live queries hear of the same change, each of its own results") {
    ScriptedQuery one({"a", "b"}, "kMDItemFSName == 'a*'");
    TestQuery other("kMDItemFSName == '*b'");
    other.SetBatches(kOneBatch);
    Listener otherListener(other.Get());
    REQUIRE(other.Execute(kMDQueryWantsUpdates));
    one.GoLive();
    otherListener.heard.clear();
    one.Add("ab");
    one.Add("c");
    one.Settle();
    CHECK(one.listener.heard == Notifications{Update({"ab"}, {}, {}, 2)});
    CHECK(otherListener.heard == Notifications{Update({"ab"}, {}, {}, 2)});
}

} // namespace sim::macos
