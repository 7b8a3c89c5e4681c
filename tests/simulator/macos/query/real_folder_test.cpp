// Queries over real files: what is found, and what is heard of changes through the messages of the file system. Time is
// real here, but nothing waits for time to pass: the run loop runs until what must come has come.
#include "simulator/macos/control/scripted_watches.h"
#include "tests/simulator/macos/items/support/balance.h"
#include "tests/simulator/macos/items/support/temporary_folder.h"
#include "tests/simulator/macos/query/support/test_query.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace sim::macos {

namespace {

namespace fs = std::filesystem;

/// A live query that has gathered, and everything it reported since.
struct LiveFolder {
    TemporaryFolder folder;
    TestQuery query{"kMDItemFSName == '*'"};
    Listener listener{query.Get()};

    LiveFolder() { query.SetScope({folder.Path()}); }

    /// Gathers, makes all result objects, and forgets what was heard.
    void Gather() {
        REQUIRE(query.Execute(kMDQueryWantsUpdates));
        REQUIRE(RunUntil([this] { return listener.HasFinished(); }));
        query.Results();
        listener.heard.clear();
    }

    bool RunUntilResultsAre(FileNames expected) {
        std::sort(expected.begin(), expected.end());
        const bool reached = RunUntil([&] { return query.SortedResults() == expected; });
        CHECK(query.SortedResults() == expected);
        return reached;
    }
};

void Write(const std::string &path, std::string_view text) { std::ofstream(path) << text; }

} // namespace

TEST_CASE("a synchronous query over a folder finds what is in it and in the folders below") {
    EndsBalanced balance;
    TemporaryFolder folder;
    folder.Write("a.txt", "1");
    folder.Write("b.txt", "22");
    folder.Write("c.png", "333");
    folder.MakeFolder("deep");
    folder.MakeFolder("deep/deeper");
    folder.Write("deep/deeper/d.txt", "4444");
    TestQuery query("kMDItemFSName == '*.txt' && kMDItemFSSize < 4");
    query.SetScope({folder.Path()});
    CHECK(query.Execute(kMDQuerySynchronous));
    CHECK(query.IsComplete());
    CHECK(query.SortedResults() == FileNames{"a.txt", "b.txt"});

    TestQuery all("kMDItemFSName == '*'");
    all.SetScope({folder.Path()});
    CHECK(all.Execute(kMDQuerySynchronous));
    CHECK(all.SortedResults() == FileNames{"a.txt", "b.txt", "c.png", "d.txt", "deep", "deeper"});
}

TEST_CASE("a file that is made, changed, renamed and deleted shows as just that") {
    EndsBalanced balance;
    LiveFolder live;
    live.folder.Write("old.txt", "x");
    live.Gather();

    live.folder.Write("new.txt", "1");
    REQUIRE(RunUntil([&] { return !live.listener.heard.empty(); }));
    CHECK(live.listener.heard ==
          std::vector<Notification>{{Notification::Kind::kUpdate, true, {"new.txt"}, {}, {}, 2}});

    live.listener.heard.clear();
    Write(live.folder.PathOf("new.txt"), "2");
    REQUIRE(RunUntil([&] { return !live.listener.heard.empty(); }));
    CHECK(live.listener.heard ==
          std::vector<Notification>{{Notification::Kind::kUpdate, true, {}, {"new.txt"}, {}, 2}});

    live.listener.heard.clear();
    fs::rename(live.folder.PathOf("new.txt"), live.folder.PathOf("newer.txt"));
    REQUIRE(RunUntil([&] { return !live.listener.heard.empty(); }));
    CHECK(live.listener.heard ==
          std::vector<Notification>{{Notification::Kind::kUpdate, true, {}, {"newer.txt"}, {}, 2}});

    live.listener.heard.clear();
    fs::remove(live.folder.PathOf("newer.txt"));
    REQUIRE(RunUntil([&] { return !live.listener.heard.empty(); }));
    CHECK(live.listener.heard ==
          std::vector<Notification>{{Notification::Kind::kUpdate, true, {}, {}, {"newer.txt"}, 1}});
}

} // namespace sim::macos
