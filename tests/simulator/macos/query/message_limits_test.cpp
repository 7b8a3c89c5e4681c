// More messages than the system keeps, fewer watches than there are folders, and files that never rest.
#include "simulator/macos/CoreFoundation/run_loop.h"
#include "simulator/macos/CoreServices/metadata/store/file_state.h"
#include "simulator/macos/CoreServices/metadata/store/scripted_watches.h"
#include "tests/simulator/macos/query/support/live_folder.h"

#include <doctest/doctest.h>

#include <string>

namespace sim::macos {

namespace {

namespace fs = std::filesystem;

} // namespace

TEST_CASE("ten thousand files made in a burst are ten thousand added items, and as many removed ones") {
    tests::Balanced balance;
    constexpr int kFiles = 10000;
    LiveFolder live;
    live.Gather();
    for (int number = 0; number < kFiles; ++number)
        live.folder.File("file" + std::to_string(number), "x"); // three messages each: more than the system keeps
    REQUIRE(RunUntil([&] { return live.query.Count() == kFiles; }));
    const auto settled = [&](auto list) { return RunUntil([&] { return (live.listener.*list)().size() >= kFiles; }); };
    REQUIRE(settled(&Listener::AllAdded));
    FileNames added = live.listener.AllAdded();
    CHECK(added.size() == kFiles);
    CHECK(std::adjacent_find(added.begin(), added.end()) == added.end());
    CHECK(live.listener.AllChanged().empty());
    CHECK(live.listener.AllRemoved().empty());

    live.listener.heard.clear();
    for (int number = 0; number < kFiles; ++number)
        fs::remove(live.folder.PathOf("file" + std::to_string(number)));
    REQUIRE(RunUntil([&] { return live.query.Count() == 0; }));
    CHECK(live.listener.AllRemoved() == added);
    CHECK(live.listener.AllAdded().empty());
}

TEST_CASE("after more messages than the system keeps nothing is lost") {
    LiveFolder live;
    live.folder.File("changed", "x");
    live.folder.File("removed", "x");
    live.folder.File("before", "x");
    live.folder.Folder("folder");
    live.Gather();
    int messagesKept = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> messagesKept;
    REQUIRE(messagesKept > 0);
    REQUIRE(messagesKept <= 1 << 20); // or this test would have to make a very long row of messages
    const std::string one = live.folder.PathOf(".one");
    const std::string other = live.folder.PathOf(".other");
    Write(one, "x");
    for (int message = 0; message < messagesKept; message += 2)
        message % 4 == 0 ? fs::rename(one, other) : fs::rename(other, one);
    Write(live.folder.PathOf("changed"), "longer");
    fs::remove(live.folder.PathOf("removed"));
    fs::rename(live.folder.PathOf("before"), live.folder.PathOf("folder/after"));
    live.folder.File("folder/added", "x");
    live.RunUntilResultsAre({"changed", "folder", "after", "added"});
    REQUIRE(RunUntil([&] { return !live.listener.AllChanged().empty(); }));
    CHECK(live.listener.AllChanged() == FileNames{"after", "changed"});
    CHECK(live.listener.AllAdded() == FileNames{"added"});
    CHECK(live.listener.AllRemoved() == FileNames{"removed"});
}

TEST_CASE("folders that cannot be watched are looked at again and again instead") {
    tests::Balanced balance;
    for (const int limit : {0, 1, 3, 4}) { // the folders on the way to the scope are watched too
        CAPTURE(limit);
        const ScriptedWatchLimit limited(limit);
        LiveFolder live;
        live.folder.Folder("a");
        live.folder.File("a/1", "x");
        live.folder.File("2", "x");
        // Without messages a file that was written a moment ago may have been written once more since.
        REQUIRE(RunUntil(
            [&] { return store::IsSettled(*store::ReadFileState(live.folder.PathOf("2")), store::FileTimeNow()); }));
        live.Gather();
        live.folder.File("a/3", "x");
        Write(live.folder.PathOf("2"), "longer");
        live.RunUntilResultsAre({"a", "1", "2", "3"});
        REQUIRE(RunUntil([&] { return !live.listener.AllChanged().empty(); }));
        CHECK(live.listener.AllChanged() == FileNames{"2"});
        live.folder.Folder("a/b");
        live.folder.File("a/b/4", "x");
        fs::remove(live.folder.PathOf("a/1"));
        live.RunUntilResultsAre({"a", "b", "2", "3", "4"});
    }
}

TEST_CASE("a file that is written to without a pause is reported all the same") {
    LiveFolder live;
    const std::string path = live.folder.File("log", "");
    live.query.SetBatches({100, 0, 100, 0, 100, 0});
    live.Gather();
    RunLoop &loop = RunLoop::Current();
    const auto writing = loop.AddTimer(CurrentClock().Now(), 0.004, [&] { std::ofstream(path, std::ios::app) << "x"; });
    CHECK(RunUntil([&] { return live.listener.AllChanged().size() >= 3; }));
    loop.Remove(writing);
}

} // namespace sim::macos
