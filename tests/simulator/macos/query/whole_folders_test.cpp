// Whole folders that come, go and move, the folders of the scope among them.
#include "tests/simulator/macos/query/support/live_folder.h"

#include <doctest/doctest.h>

namespace sim::macos {

namespace {

namespace fs = std::filesystem;

} // namespace

TEST_CASE("a whole folder made with all its contents is found") {
    LiveFolder live;
    live.Gather();
    fs::create_directories(live.folder.PathOf("a/b/c"));
    live.folder.File("a/1", "x");
    live.folder.File("a/b/2", "x");
    live.folder.File("a/b/c/3", "x");
    live.RunUntilResultsAre({"a", "b", "c", "1", "2", "3"});
    live.folder.File("a/b/c/4", "x"); // watched by now, or read just then
    live.RunUntilResultsAre({"a", "b", "c", "1", "2", "3", "4"});
}

TEST_CASE("a whole folder that is moved in, within and out takes its contents along") {
    tests::TemporaryFolder outside;
    outside.Folder("top");
    outside.Folder("top/deep");
    outside.File("top/one", "x");
    outside.File("top/deep/two", "x");
    LiveFolder live;
    live.folder.Folder("other");
    live.Gather();

    fs::rename(outside.PathOf("top"), live.folder.PathOf("top"));
    live.RunUntilResultsAre({"other", "top", "deep", "one", "two"});
    CHECK(live.listener.AllAdded() == FileNames{"deep", "one", "top", "two"});

    live.listener.heard.clear();
    fs::rename(live.folder.PathOf("top"), live.folder.PathOf("other/renamed"));
    REQUIRE(RunUntil([&] { return live.listener.AllChanged().size() >= 4; }));
    CHECK(live.listener.AllChanged() == FileNames{"deep", "one", "renamed", "two"});
    CHECK(live.listener.AllAdded().empty());
    CHECK(live.listener.AllRemoved().empty());

    live.listener.heard.clear();
    live.folder.File("other/renamed/deep/three", "x"); // still watched under the new name
    live.RunUntilResultsAre({"other", "renamed", "deep", "one", "two", "three"});

    live.listener.heard.clear();
    fs::rename(live.folder.PathOf("other/renamed"), outside.PathOf("back"));
    live.RunUntilResultsAre({"other"});
    CHECK(live.listener.AllRemoved() == FileNames{"deep", "one", "renamed", "three", "two"});
    outside.File("back/four", "x");
    live.folder.File("last", "x");
    live.RunUntilResultsAre({"other", "last"});
}

TEST_CASE("a folder deleted with all its contents is gone with them") {
    LiveFolder live;
    fs::create_directories(live.folder.PathOf("a/b/c"));
    live.folder.File("a/b/1", "x");
    live.folder.File("a/b/c/2", "x");
    live.folder.File("stays", "x");
    live.Gather();
    fs::remove_all(live.folder.PathOf("a"));
    live.RunUntilResultsAre({"stays"});
    CHECK(live.listener.AllRemoved() == FileNames{"1", "2", "a", "b", "c"});
}

TEST_CASE("a scope given by way of a symbolic link is the folder it leads to") {
    tests::Balanced balance;
    tests::TemporaryFolder folder;
    folder.Folder("real");
    folder.File("real/a", "x");
    fs::create_symlink("real", folder.PathOf("link"));
    TestQuery query("kMDItemFSName == '*'");
    query.SetScope({folder.PathOf("link"), folder.PathOf("real")});
    REQUIRE(query.Execute(kMDQuerySynchronous));
    CHECK(query.Results() == FileNames{"a"});
}

TEST_CASE("a folder of the scope may come, go and come back") {
    tests::Balanced balance;
    tests::TemporaryFolder folder;
    const std::string scope = folder.PathOf("not/yet");
    TestQuery query("kMDItemFSName == '*'");
    query.SetScope({scope});
    Listener listener(query.Get());
    REQUIRE(query.Execute(kMDQueryWantsUpdates));
    REQUIRE(RunUntil([&] { return listener.HasFinished(); }));
    CHECK(query.Count() == 0);

    fs::create_directories(scope);
    folder.File("not/yet/a", "x");
    REQUIRE(RunUntil([&] { return query.Results() == FileNames{"a"}; }));
    fs::rename(folder.PathOf("not"), folder.PathOf("moved"));
    REQUIRE(RunUntil([&] { return query.Count() == 0; }));
    folder.File("moved/yet/b", "x");
    fs::rename(folder.PathOf("moved"), folder.PathOf("not"));
    REQUIRE(RunUntil([&] { return query.SortedResults() == FileNames{"a", "b"}; }));
    fs::remove_all(scope);
    REQUIRE(RunUntil([&] { return query.Count() == 0; }));
    fs::create_directories(scope);
    folder.File("not/yet/c", "x");
    REQUIRE(RunUntil([&] { return query.Results() == FileNames{"c"}; }));
}

TEST_CASE("a file in the scope, or nothing at all, has nothing below it") {
    tests::Balanced balance;
    tests::TemporaryFolder folder;
    folder.File("a", "x");
    TestQuery query("kMDItemFSName == '*'");
    query.SetScope({folder.PathOf("a"), folder.PathOf("missing")}); // a file, and nothing at all
    REQUIRE(query.Execute(kMDQuerySynchronous));
    CHECK(query.Count() == 0);
}

} // namespace sim::macos
