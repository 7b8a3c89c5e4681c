// Random things done to real folders while a query is live.
#include "simulator/macos/CoreServices/metadata/items/item.h"
#include "tests/simulator/macos/query/support/live_folder.h"

#include <doctest/doctest.h>

#include <random>
#include <set>
#include <sys/stat.h>

namespace sim::macos {

namespace {

namespace fs = std::filesystem;

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

std::string BothLists(const TestQuery &query, const std::vector<std::string> &paths) {
    std::string text;
    for (const std::string &path : paths)
        text += "\nthere  " + path + " " + std::to_string(NodeAt(path).second);
    for (CFIndex index = 0; index < query.Count(); ++index) {
        const AttributeSource &source = SourceAt(query.Get(), index);
        text += "\nlisted " + source.Path() + " " + std::to_string(source.Identity().file);
    }
    return text;
}

} // namespace

TEST_CASE("whatever is done to a folder, a live query ends up with what is there") {
    tests::Balanced balance;
    for (unsigned number = 1; number <= 12; ++number) {
        CAPTURE(number);
        tests::TemporaryFolder folder;
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
        const bool reached = RunUntil([&] { return ListsJust(query, wanderer.Paths()); });
        CHECK_MESSAGE(reached, BothLists(query, wanderer.Paths()));
    }
}

} // namespace sim::macos
