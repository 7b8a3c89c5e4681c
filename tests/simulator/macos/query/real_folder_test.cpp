// Queries over real files: what is found, and what is heard of changes through the messages of the file system. Time is
// real here, but nothing waits for time to pass: the run loop runs until what must come has come.
#include "simulator/macos/CoreFoundation/run_loop.h"
#include "simulator/macos/CoreServices/metadata/items/item.h"
#include "simulator/macos/CoreServices/metadata/store/file_state.h"
#include "simulator/macos/control/scripted_watches.h"
#include "tests/simulator/macos/items/support/balance.h"
#include "tests/simulator/macos/items/support/temporary_folder.h"
#include "tests/simulator/macos/query/support/test_query.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

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

TEST_CASE("names that begin with a dot are not listed, until they lose it") {
    EndsBalanced balance;
    LiveFolder live;
    live.folder.Write(".hidden", "x");
    live.folder.MakeFolder(".folder");
    live.folder.Write(".folder/inside", "x");
    live.Gather();
    CHECK(live.query.Count() == 0);
    fs::rename(live.folder.PathOf(".hidden"), live.folder.PathOf("shown"));
    live.RunUntilResultsAre({"shown"});
    fs::rename(live.folder.PathOf("shown"), live.folder.PathOf(".hidden"));
    live.RunUntilResultsAre({});
}

TEST_CASE("a file saved under a temporary name and renamed over another replaces it") {
    EndsBalanced balance;
    LiveFolder live;
    live.folder.Write("text", "old");
    live.Gather();
    live.folder.Write(".text.new", "new");
    fs::rename(live.folder.PathOf(".text.new"), live.folder.PathOf("text"));
    REQUIRE(RunUntil([&] { return !live.listener.heard.empty(); }));
    CHECK(live.listener.AllAdded() == FileNames{"text"});
    CHECK(live.listener.AllRemoved() == FileNames{"text"});
    CHECK(live.query.Count() == 1);
}

TEST_CASE("attributes set on a file are a change of it") {
    EndsBalanced balance;
    LiveFolder live;
    const std::string path = live.folder.Write("a", "x");
    live.Gather();
    SetExtendedAttribute(path, "user.xdg.comment", "remarkable");
    REQUIRE(RunUntil([&] { return !live.listener.heard.empty(); }));
    CHECK(live.listener.AllChanged() == FileNames{"a"});
    live.listener.heard.clear();
    fs::permissions(path, fs::perms::owner_read);
    REQUIRE(RunUntil([&] { return !live.listener.heard.empty(); }));
    CHECK(live.listener.AllChanged() == FileNames{"a"});
}

TEST_CASE("a whole folder made with all its contents is found") {
    EndsBalanced balance;
    LiveFolder live;
    live.Gather();
    fs::create_directories(live.folder.PathOf("a/b/c"));
    live.folder.Write("a/1", "x");
    live.folder.Write("a/b/2", "x");
    live.folder.Write("a/b/c/3", "x");
    live.RunUntilResultsAre({"a", "b", "c", "1", "2", "3"});
    live.folder.Write("a/b/c/4", "x"); // watched by now, or read just then
    live.RunUntilResultsAre({"a", "b", "c", "1", "2", "3", "4"});
}

TEST_CASE("a whole folder that is moved in, within and out takes its contents along") {
    EndsBalanced balance;
    TemporaryFolder outside;
    outside.MakeFolder("top");
    outside.MakeFolder("top/deep");
    outside.Write("top/one", "x");
    outside.Write("top/deep/two", "x");
    LiveFolder live;
    live.folder.MakeFolder("other");
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
    live.folder.Write("other/renamed/deep/three", "x"); // still watched under the new name
    live.RunUntilResultsAre({"other", "renamed", "deep", "one", "two", "three"});

    live.listener.heard.clear();
    fs::rename(live.folder.PathOf("other/renamed"), outside.PathOf("back"));
    live.RunUntilResultsAre({"other"});
    CHECK(live.listener.AllRemoved() == FileNames{"deep", "one", "renamed", "three", "two"});
    outside.Write("back/four", "x");
    live.folder.Write("last", "x");
    live.RunUntilResultsAre({"other", "last"});
}

TEST_CASE("a folder deleted with all its contents is gone with them") {
    EndsBalanced balance;
    LiveFolder live;
    fs::create_directories(live.folder.PathOf("a/b/c"));
    live.folder.Write("a/b/1", "x");
    live.folder.Write("a/b/c/2", "x");
    live.folder.Write("stays", "x");
    live.Gather();
    fs::remove_all(live.folder.PathOf("a"));
    live.RunUntilResultsAre({"stays"});
    CHECK(live.listener.AllRemoved() == FileNames{"1", "2", "a", "b", "c"});
}

TEST_CASE("a deleted file and a new one of the same name are two files, even with the same inode number") {
    EndsBalanced balance;
    LiveFolder live;
    const std::string path = live.folder.Write("a", "x");
    live.Gather();
    const auto old = CFRef<CFTypeRef>::Retain(MDQueryGetResultAtIndex(live.query.Get(), 0));
    fs::remove(path);
    live.folder.Write("a", "y");
    REQUIRE(RunUntil([&] { return !live.listener.AllAdded().empty() && !live.listener.AllRemoved().empty(); }));
    CHECK(live.query.Count() == 1);
    CHECK_FALSE(CFEqual(old.Get(), MDQueryGetResultAtIndex(live.query.Get(), 0)));
    CHECK(MDQueryGetIndexOfResult(live.query.Get(), old.Get()) == kCFNotFound);
}

TEST_CASE("two names of one file are one result, which stays while one name is left") {
    EndsBalanced balance;
    LiveFolder live;
    live.folder.Write("one", "x");
    live.folder.MakeFolder("below");
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
    EndsBalanced balance;
    TemporaryFolder outside;
    outside.Write("far", "x");
    LiveFolder live;
    fs::create_symlink(outside.Path(), live.folder.PathOf("link"));
    fs::create_symlink("nowhere", live.folder.PathOf("broken"));
    fs::create_symlink(".", live.folder.PathOf("itself"));
    REQUIRE(mkfifo(live.folder.PathOf("pipe").c_str(), 0600) == 0);
    live.Gather();
    CHECK(live.query.SortedResults() == FileNames{"broken", "itself", "link"});
}

TEST_CASE("a scope given by way of a symbolic link is the folder it leads to") {
    EndsBalanced balance;
    TemporaryFolder folder;
    folder.MakeFolder("real");
    folder.Write("real/a", "x");
    fs::create_symlink("real", folder.PathOf("link"));
    TestQuery query("kMDItemFSName == '*'");
    query.SetScope({folder.PathOf("link"), folder.PathOf("real")});
    REQUIRE(query.Execute(kMDQuerySynchronous));
    CHECK(query.Results() == FileNames{"a"});
}

TEST_CASE("a folder of the scope may come, go and come back") {
    EndsBalanced balance;
    TemporaryFolder folder;
    const std::string scope = folder.PathOf("not/yet");
    TestQuery query("kMDItemFSName == '*'");
    query.SetScope({scope});
    Listener listener(query.Get());
    REQUIRE(query.Execute(kMDQueryWantsUpdates));
    REQUIRE(RunUntil([&] { return listener.HasFinished(); }));
    CHECK(query.Count() == 0);

    fs::create_directories(scope);
    folder.Write("not/yet/a", "x");
    REQUIRE(RunUntil([&] { return query.Results() == FileNames{"a"}; }));
    fs::rename(folder.PathOf("not"), folder.PathOf("moved"));
    REQUIRE(RunUntil([&] { return query.Count() == 0; }));
    folder.Write("moved/yet/b", "x");
    fs::rename(folder.PathOf("moved"), folder.PathOf("not"));
    REQUIRE(RunUntil([&] { return query.SortedResults() == FileNames{"a", "b"}; }));
    fs::remove_all(scope);
    REQUIRE(RunUntil([&] { return query.Count() == 0; }));
    fs::create_directories(scope);
    folder.Write("not/yet/c", "x");
    REQUIRE(RunUntil([&] { return query.Results() == FileNames{"c"}; }));
}

TEST_CASE("a folder that may not be read has nothing in it") {
    EndsBalanced balance;
    TemporaryFolder folder;
    folder.Write("a", "x");
    TestQuery query("kMDItemFSName == '*'");
    query.SetScope({folder.PathOf("a"), folder.PathOf("missing")}); // a file, and nothing at all
    REQUIRE(query.Execute(kMDQuerySynchronous));
    CHECK(query.Count() == 0);
}

TEST_CASE("ten thousand files made in a burst are ten thousand added items, and as many removed ones") {
    EndsBalanced balance;
    constexpr int kBurst = 10000;
    LiveFolder live;
    live.Gather();
    for (int number = 0; number < kBurst; ++number)
        live.folder.Write("file" + std::to_string(number), "x"); // three messages each: more than the system keeps
    REQUIRE(RunUntil([&] { return live.query.Count() == kBurst; }));
    const auto settled = [&](auto list) { return RunUntil([&] { return (live.listener.*list)().size() >= kBurst; }); };
    REQUIRE(settled(&Listener::AllAdded));
    FileNames added = live.listener.AllAdded();
    CHECK(added.size() == kBurst);
    CHECK(std::adjacent_find(added.begin(), added.end()) == added.end());
    CHECK(live.listener.AllChanged().empty());
    CHECK(live.listener.AllRemoved().empty());

    live.listener.heard.clear();
    for (int number = 0; number < kBurst; ++number)
        fs::remove(live.folder.PathOf("file" + std::to_string(number)));
    REQUIRE(RunUntil([&] { return live.query.Count() == 0; }));
    CHECK(live.listener.AllRemoved() == added);
    CHECK(live.listener.AllAdded().empty());
}

TEST_CASE("after more messages than the system keeps nothing is lost") {
    EndsBalanced balance;
    LiveFolder live;
    live.folder.Write("changed", "x");
    live.folder.Write("removed", "x");
    live.folder.Write("before", "x");
    live.folder.MakeFolder("folder");
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
    live.folder.Write("folder/added", "x");
    live.RunUntilResultsAre({"changed", "folder", "after", "added"});
    REQUIRE(RunUntil([&] { return !live.listener.AllChanged().empty(); }));
    CHECK(live.listener.AllChanged() == FileNames{"after", "changed"});
    CHECK(live.listener.AllAdded() == FileNames{"added"});
    CHECK(live.listener.AllRemoved() == FileNames{"removed"});
}

TEST_CASE("folders that cannot be watched are looked at again and again instead") {
    EndsBalanced balance;
    for (const int limit : {0, 1, 3, 4}) { // the folders on the way to the scope are watched too
        CAPTURE(limit);
        const ScriptedWatchLimit limited(limit);
        LiveFolder live;
        live.folder.MakeFolder("a");
        live.folder.Write("a/1", "x");
        live.folder.Write("2", "x");
        // Without messages a file that was written a moment ago may have been written once more since.
        REQUIRE(RunUntil(
            [&] { return store::IsSettled(*store::ReadFileState(live.folder.PathOf("2")), store::FileTimeNow()); }));
        live.Gather();
        live.folder.Write("a/3", "x");
        Write(live.folder.PathOf("2"), "longer");
        live.RunUntilResultsAre({"a", "1", "2", "3"});
        REQUIRE(RunUntil([&] { return !live.listener.AllChanged().empty(); }));
        CHECK(live.listener.AllChanged() == FileNames{"2"});
        live.folder.MakeFolder("a/b");
        live.folder.Write("a/b/4", "x");
        fs::remove(live.folder.PathOf("a/1"));
        live.RunUntilResultsAre({"a", "b", "2", "3", "4"});
    }
}

TEST_CASE("a file that is written to without a pause is reported all the same") {
    EndsBalanced balance;
    LiveFolder live;
    const std::string path = live.folder.Write("log", "");
    live.query.SetBatches({100, 0, 100, 0, 100, 0});
    live.Gather();
    RunLoop &loop = RunLoop::Current();
    const auto writing = loop.AddTimer(CurrentClock().Now(), 0.004, [&] { std::ofstream(path, std::ios::app) << "x"; });
    CHECK(RunUntil([&] { return live.listener.AllChanged().size() >= 3; }));
    loop.Remove(writing);
}

TEST_CASE("two live queries watch the same folder") {
    EndsBalanced balance;
    LiveFolder live;
    TestQuery texts("kMDItemFSName == '*.txt'");
    texts.SetScope({live.folder.Path()});
    REQUIRE(texts.Execute(kMDQueryWantsUpdates));
    live.Gather();
    live.folder.Write("a.txt", "x");
    live.folder.Write("b.png", "x");
    live.RunUntilResultsAre({"a.txt", "b.png"});
    REQUIRE(RunUntil([&] { return texts.Count() == 1; }));
    CHECK(texts.Results() == FileNames{"a.txt"});
}

namespace {

/// Does random things to the files below a folder.
class Wanderer {
public:
    Wanderer(unsigned number, std::string top) : random_(number), top_(std::move(top)) { fs::create_directories(top_); }

    void Step() {
        std::error_code ignored; // what is impossible just does not happen
        switch (Pick(9)) {
        case 0:
        case 1:
            Write(Somewhere(), std::string(static_cast<std::size_t>(Pick(100)), 'x'));
            break;
        case 2:
            fs::create_directory(Somewhere(), ignored);
            break;
        case 3:
        case 4:
        case 5:
            fs::rename(Something(), Somewhere(), ignored);
            break;
        case 6:
            fs::remove_all(Something(), ignored);
            break;
        case 7:
            fs::create_hard_link(Something(), Somewhere(), ignored);
            break;
        default:
            fs::create_symlink("x", Somewhere(), ignored);
        }
    }

    /// The names a query should list now; several names of one file once, so only their number is certain.
    std::vector<std::string> Paths() const {
        std::vector<std::string> paths;
        for (auto entry = fs::recursive_directory_iterator(top_); entry != fs::recursive_directory_iterator();
             ++entry) {
            if (entry->path().filename().string().front() != '.')
                paths.push_back(entry->path().string());
            else
                entry.disable_recursion_pending();
        }
        return paths;
    }

private:
    int Pick(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

    std::string Something() {
        const auto paths = Paths();
        return paths.empty() ? top_ + "/nothing"
                             : paths[static_cast<std::size_t>(Pick(static_cast<int>(paths.size())))];
    }

    std::string Somewhere() {
        std::string folder = top_;
        const std::string something = Something();
        if (Pick(2) == 0 && fs::is_directory(fs::symlink_status(something)))
            folder = something;
        return folder + (Pick(12) == 0 ? "/." : "/") + std::to_string(Pick(12));
    }

    std::minstd_rand random_;
    std::string top_;
};

const AttributeSource &SourceAt(MDQueryRef query, CFIndex index) {
    const void *item = MDQueryGetResultAtIndex(query, index);
    return Item::From(static_cast<MDItemRef>(const_cast<void *>(item)))->Source();
}

/// The files that a listener knows to be results, from what it was told.
class KnownFiles {
public:
    explicit KnownFiles(const TestQuery &query) : query_(query) {}

    void Apply(const Notification &heard, CFDictionaryRef userInfo) {
        if (heard.kind == Notification::Kind::kUpdate) {
            for (const FileIdentity &file : In(userInfo, kMDQueryUpdateAddedItems))
                CHECK(files_.insert(file).second);
            for (const FileIdentity &file : In(userInfo, kMDQueryUpdateChangedItems))
                CHECK(files_.contains(file));
            for (const FileIdentity &file : In(userInfo, kMDQueryUpdateRemovedItems))
                CHECK(files_.erase(file) == 1);
            CHECK(files_ == Results());
        }
        files_ = Results(); // which also makes an object of each
    }

private:
    std::set<FileIdentity> Results() const {
        std::set<FileIdentity> files;
        for (CFIndex index = 0; index < query_.Count(); ++index)
            files.insert(SourceAt(query_.Get(), index).Identity());
        return files;
    }

    static std::vector<FileIdentity> In(CFDictionaryRef userInfo, CFStringRef key) {
        std::vector<FileIdentity> files;
        const void *array = userInfo ? CFDictionaryGetValue(userInfo, key) : nullptr;
        for (CFIndex index = 0; array && index < CFArrayGetCount(static_cast<CFArrayRef>(array)); ++index) {
            const void *item = CFArrayGetValueAtIndex(static_cast<CFArrayRef>(array), index);
            files.push_back(Item::From(static_cast<MDItemRef>(const_cast<void *>(item)))->Source().Identity());
        }
        return files;
    }

    const TestQuery &query_;
    std::set<FileIdentity> files_;
};

/// What a path leads to: device and inode number.
std::pair<dev_t, ino64_t> NodeAt(const std::string &path) {
    struct stat64 status {};
    REQUIRE(lstat64(path.c_str(), &status) == 0);
    return {status.st_dev, status.st_ino};
}

bool ListsJust(const TestQuery &query, const std::vector<std::string> &paths) {
    std::set<std::pair<dev_t, ino64_t>> there;
    for (const std::string &path : paths)
        there.insert(NodeAt(path));
    if (static_cast<std::size_t>(query.Count()) != there.size())
        return false;
    for (CFIndex index = 0; index < query.Count(); ++index) {
        if (std::find(paths.begin(), paths.end(), SourceAt(query.Get(), index).Path()) == paths.end())
            return false;
    }
    return true;
}

} // namespace

TEST_CASE("whatever is done to a folder, a live query ends up with what is there") {
    EndsBalanced balance;
    for (unsigned number = 1; number <= 12; ++number) {
        CAPTURE(number);
        TemporaryFolder folder;
        Wanderer wanderer(number, folder.PathOf("in"));
        std::minstd_rand random(number);
        for (int step = 0; step < 30; ++step)
            wanderer.Step();
        TestQuery query("kMDItemFSName == '*'");
        query.SetScope({folder.PathOf("in")});
        query.SetBatches({7, 0, 7, 0, 7, 0});
        KnownFiles known(query);
        Listener listener(query.Get());
        listener.handler = [&](const Notification &heard, CFDictionaryRef userInfo) { known.Apply(heard, userInfo); };
        REQUIRE(query.Execute(kMDQueryWantsUpdates));
        for (int step = 0; step < 300; ++step) {
            wanderer.Step();
            if (random() % 8 == 0)
                CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
        }
        CHECK(RunUntil([&] { return ListsJust(query, wanderer.Paths()); }));
    }
}

} // namespace sim::macos
