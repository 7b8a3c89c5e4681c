// Queries over real files: what is found, and what is heard of changes through the messages of the file system. Time is
// real here, but nothing waits for time to pass: the run loop runs until what must come has come.
#include "tests/simulator/macos/query/support/live_folder.h"

#include <doctest/doctest.h>

#include <sys/stat.h>

namespace sim::macos {

namespace {

namespace fs = std::filesystem;

} // namespace

TEST_CASE("a synchronous query over a folder finds what is in it and in the folders below") {
    tests::Balanced balance;
    tests::TemporaryFolder folder;
    folder.File("a.txt", "1");
    folder.File("b.txt", "22");
    folder.File("c.png", "333");
    folder.Folder("deep");
    folder.Folder("deep/deeper");
    folder.File("deep/deeper/d.txt", "4444");
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
    LiveFolder live;
    live.folder.File("old.txt", "x");
    live.Gather();

    live.folder.File("new.txt", "1");
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

TEST_CASE("names that begin with a dot are not listed, until they lose it") {
    LiveFolder live;
    live.folder.File(".hidden", "x");
    live.folder.Folder(".folder");
    live.folder.File(".folder/inside", "x");
    live.Gather();
    CHECK(live.query.Count() == 0);
    fs::rename(live.folder.PathOf(".hidden"), live.folder.PathOf("shown"));
    live.RunUntilResultsAre({"shown"});
    fs::rename(live.folder.PathOf("shown"), live.folder.PathOf(".hidden"));
    live.RunUntilResultsAre({});
}

TEST_CASE("a file saved under a temporary name and renamed over another replaces it") {
    LiveFolder live;
    live.folder.File("text", "old");
    live.Gather();
    live.folder.File(".text.new", "new");
    fs::rename(live.folder.PathOf(".text.new"), live.folder.PathOf("text"));
    REQUIRE(RunUntil([&] { return !live.listener.heard.empty(); }));
    CHECK(live.listener.AllAdded() == FileNames{"text"});
    CHECK(live.listener.AllRemoved() == FileNames{"text"});
    CHECK(live.query.Count() == 1);
}

TEST_CASE("attributes set on a file are a change of it") {
    LiveFolder live;
    const std::string path = live.folder.File("a", "x");
    live.Gather();
    tests::SetExtendedAttribute(path, "user.xdg.comment", "remarkable");
    REQUIRE(RunUntil([&] { return !live.listener.heard.empty(); }));
    CHECK(live.listener.AllChanged() == FileNames{"a"});
    live.listener.heard.clear();
    fs::permissions(path, fs::perms::owner_read);
    REQUIRE(RunUntil([&] { return !live.listener.heard.empty(); }));
    CHECK(live.listener.AllChanged() == FileNames{"a"});
}

TEST_CASE("a deleted file and a new one of the same name are two files, even with the same inode number") {
    LiveFolder live;
    const std::string path = live.folder.File("a", "x");
    live.Gather();
    const auto old = CFRef<CFTypeRef>::Retain(MDQueryGetResultAtIndex(live.query.Get(), 0));
    fs::remove(path);
    live.folder.File("a", "y");
    REQUIRE(RunUntil([&] { return !live.listener.AllAdded().empty() && !live.listener.AllRemoved().empty(); }));
    CHECK(live.query.Count() == 1);
    CHECK_FALSE(CFEqual(old.Get(), MDQueryGetResultAtIndex(live.query.Get(), 0)));
    CHECK(MDQueryGetIndexOfResult(live.query.Get(), old.Get()) == kCFNotFound);
}

TEST_CASE("two names of one file are one result, which stays while one name is left") {
    LiveFolder live;
    live.folder.File("one", "x");
    live.folder.Folder("below");
    live.Gather();
    fs::create_hard_link(live.folder.PathOf("one"), live.folder.PathOf("below/two"));
    REQUIRE(RunUntil([&] { return !live.listener.AllChanged().empty(); })); // it has one name more
    CHECK(live.query.Count() == 2);
    live.listener.heard.clear();
    fs::remove(live.folder.PathOf("one"));
    live.RunUntilResultsAre({"below", "two"});
    CHECK(live.listener.AllRemoved().empty());
    fs::remove(live.folder.PathOf("below/two"));
    live.RunUntilResultsAre({"below"});
    CHECK(live.listener.AllRemoved() == FileNames{"two"});
}

TEST_CASE("a symbolic link is listed and not followed; pipes are not listed") {
    tests::TemporaryFolder outside;
    outside.File("far", "x");
    LiveFolder live;
    fs::create_symlink(outside.Path(), live.folder.PathOf("link"));
    fs::create_symlink("nowhere", live.folder.PathOf("broken"));
    fs::create_symlink(".", live.folder.PathOf("itself"));
    REQUIRE(mkfifo(live.folder.PathOf("pipe").c_str(), 0600) == 0);
    live.Gather();
    CHECK(live.query.SortedResults() == FileNames{"broken", "itself", "link"});
}

TEST_CASE("two live queries watch the same folder") {
    LiveFolder live;
    TestQuery texts("kMDItemFSName == '*.txt'");
    texts.SetScope({live.folder.Path()});
    REQUIRE(texts.Execute(kMDQueryWantsUpdates));
    live.Gather();
    live.folder.File("a.txt", "x");
    live.folder.File("b.png", "x");
    live.RunUntilResultsAre({"a.txt", "b.png"});
    REQUIRE(RunUntil([&] { return texts.Count() == 1; }));
    CHECK(texts.Results() == FileNames{"a.txt"});
}

} // namespace sim::macos
