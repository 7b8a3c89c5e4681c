// Whatever happens in whatever order: what a listener puts together from the notifications is, at every step, exactly
// what the query says its results are; a removed item is one that was known; and in the end the results are the files
// that fit. Scripts are random and repeatable: the number of a failing one is printed.
#include "simulator/macos/CoreServices/metadata/query/scripted_progress.h"
#include "tests/simulator/macos/query/support/scripted_query.h"

#include <doctest/doctest.h>

#include <functional>
#include <random>
#include <set>

namespace sim::macos {

namespace {

using File = ScriptedStore::File;

/// The results as a listener knows them: files, each with the item that stands for it.
class Fold {
public:
    explicit Fold(MDQueryRef query) : query_(query) {}

    void Apply(CFDictionaryRef userInfo) {
        for (const void *item : Items(userInfo, kMDQueryUpdateAddedItems)) {
            const bool isNew = known_.try_emplace(FileOf(item), CFRef<CFTypeRef>::Retain(item)).second;
            CHECK(isNew);
        }
        for (const void *item : Items(userInfo, kMDQueryUpdateChangedItems)) {
            const auto found = known_.find(FileOf(item));
            REQUIRE(found != known_.end());
            CHECK(CFEqual(found->second.Get(), item));
        }
        for (const void *item : Items(userInfo, kMDQueryUpdateRemovedItems)) {
            const auto found = known_.find(FileOf(item));
            REQUIRE(found != known_.end());
            CHECK(CFEqual(found->second.Get(), item));
            known_.erase(found);
        }
    }

    /// That the query's results are these, and that each is found at its place.
    void CheckAgainstResults() const {
        std::set<File> results;
        const CFIndex count = MDQueryGetResultCount(query_);
        for (CFIndex index = 0; index < count; ++index) {
            const void *item = MDQueryGetResultAtIndex(query_, index);
            CHECK(MDQueryGetIndexOfResult(query_, item) == index);
            results.insert(FileOf(item));
        }
        CHECK(results.size() == static_cast<std::size_t>(count));
        CHECK(results == Files());
    }

    std::set<File> Files() const {
        std::set<File> files;
        for (const auto &[file, item] : known_)
            files.insert(file);
        return files;
    }

private:
    static File FileOf(const void *item) {
        return ScriptedStore::FileOf(static_cast<MDItemRef>(const_cast<void *>(item)));
    }

    static std::vector<const void *> Items(CFDictionaryRef userInfo, CFStringRef key) {
        const void *array = userInfo ? CFDictionaryGetValue(userInfo, key) : nullptr;
        if (!array)
            return {};
        const auto values = ValuesOf(static_cast<CFArrayRef>(array));
        CHECK_FALSE(values.empty());
        return {values.begin(), values.end()};
    }

    MDQueryRef query_;
    std::map<File, CFRef<CFTypeRef>> known_;
};

/// One random run of a store and a live query.
class Script {
public:
    Script(unsigned number, bool sorted)
        : random_(number),
          scripted_({}, "kMDItemStarRating >= 3", {}, sorted ? NameList{"kMDItemStarRating"} : NameList{}),
          fold_(scripted_.query.Get()), sorted_(sorted) {
        scripted_.query.SetScope({"/in"});
        scripted_.listener.handler = [this](const Notification &heard, CFDictionaryRef userInfo) {
            Hear(heard, userInfo);
        };
    }

    void Play() {
        for (int count = Pick(12); count > 0; --count)
            AddFile();
        RandomBatches();
        REQUIRE(scripted_.query.Execute(kMDQueryWantsUpdates));
        for (int step = 0; step < 120; ++step) {
            OneStep();
            fold_.CheckAgainstResults();
            CheckOrder();
        }
        End();
    }

private:
    int Pick(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

    File PickFile() {
        auto file = ratings_.begin();
        std::advance(file, Pick(static_cast<int>(ratings_.size())));
        return file->first;
    }

    std::string RandomPath() { return (Pick(4) == 0 ? "/out/" : "/in/") + std::to_string(Pick(1000)); }

    /// Few files, so that much happens to each.
    void AddFile() {
        if (ratings_.size() >= 12)
            return;
        std::string path = RandomPath();
        const File file = scripted_.store.Add(path);
        ratings_[file] = 0;
        paths_[file] = std::move(path);
        if (Pick(2) == 0)
            Rate(file);
    }

    void Rate(File file) {
        ratings_[file] = Pick(6);
        scripted_.store.SetNumber(file, "kMDItemStarRating", ratings_[file]);
    }

    void RandomBatches() {
        const auto number = [this] { return static_cast<std::size_t>(Pick(4) == 0 ? 1000 : Pick(5)); };
        const auto time = [this] { return static_cast<std::size_t>(Pick(3) == 0 ? 0 : Pick(200)); };
        scripted_.query.SetBatches({number(), time(), number(), time(), number(), time()});
    }

    void Hear(const Notification &heard, CFDictionaryRef userInfo) {
        CHECK_FALSE(silent_);
        CHECK(disabled_ == 0);
        CHECK((heard.kind != Notification::Kind::kProgress) == scripted_.query.IsComplete());
        fold_.Apply(userInfo);
        fold_.CheckAgainstResults();
        CheckOrder();
        if (Pick(30) == 0)
            Disable();
        if (Pick(10) == 0)
            AddFile();
        if (Pick(200) == 0)
            Stop();
    }

    void Disable() {
        MDQueryDisableUpdates(scripted_.query.Get());
        ++disabled_;
    }

    void Enable() {
        if (disabled_ == 0)
            return;
        MDQueryEnableUpdates(scripted_.query.Get());
        --disabled_;
    }

    void Stop() {
        MDQueryStop(scripted_.query.Get());
        stopped_ = true;
    }

    void OneStep() {
        const std::pair<int, std::function<void()>> kSteps[] = {
            {20, [this] { AddFile(); }},
            {20, [this] { Rate(PickFile()); }},
            {10, [this] { scripted_.store.Touch(PickFile()); }},
            {10,
             [this] {
                 const File file = PickFile();
                 scripted_.store.Move(file, paths_[file] = RandomPath());
             }},
            {10,
             [this] {
                 const File file = PickFile();
                 scripted_.store.Remove(file);
                 ratings_.erase(file);
             }},
            {4, [this] { Disable(); }},
            {6, [this] { Enable(); }},
            {2, [this] { RandomBatches(); }},
            {2, [this] { scripted_.store.Hold(); }},
            {4, [this] { scripted_.store.Release(); }},
            {3, [this] { scripted_.store.SetPace(static_cast<std::size_t>(Pick(4)), Pick(30)); }},
            {40, [this] { scripted_.store.Run(Pick(100)); }},
        };
        if (ratings_.empty())
            AddFile();
        silent_ = true; // nothing but the run loop, and a stop, may bring notifications
        int choice = Pick(131);
        for (const auto &[weight, step] : kSteps) {
            choice -= weight;
            if (choice >= 0)
                continue;
            silent_ = weight != 40;
            step();
            break;
        }
        silent_ = false;
    }

    void CheckOrder() {
        if (!sorted_)
            return;
        int last = -1;
        for (CFIndex index = 0; index < scripted_.query.Count(); ++index) {
            const auto value = static_cast<CFNumberRef>(MDQueryGetAttributeValueOfResultAtIndex(
                scripted_.query.Get(), MakeString("kMDItemStarRating").Get(), index));
            int rating = -1;
            if (value)
                CFNumberGetValue(value, kCFNumberIntType, &rating);
            CHECK(rating >= last);
            last = rating;
        }
    }

    void End() {
        while (disabled_ > 0)
            Enable();
        scripted_.store.Release();
        for (int round = 0; round < 100; ++round) { // a handler may disable updates again, or add a file
            scripted_.store.Run(1000000);
            while (disabled_ > 0)
                Enable();
        }
        fold_.CheckAgainstResults();
        if (stopped_)
            return;
        CHECK(scripted_.query.IsComplete());
        CHECK(scripted_.listener.CountOf(Notification::Kind::kFinish) == 1);
        std::set<File> fitting;
        for (const auto &[file, rating] : ratings_) {
            if (rating >= 3 && paths_[file].starts_with("/in/"))
                fitting.insert(file);
        }
        CHECK(fold_.Files() == fitting);
    }

    std::minstd_rand random_;
    ProgressWithAddedItems withAdded_;
    ScriptedQuery scripted_;
    Fold fold_;
    bool sorted_;
    std::map<File, int> ratings_;
    std::map<File, std::string> paths_;
    int disabled_ = 0;
    bool stopped_ = false;
    bool silent_ = false;
};

} // namespace

TEST_CASE("random scripts: notifications add up to the results at every step") {
    for (unsigned number = 1; number <= 150; ++number) {
        CAPTURE(number);
        Script(number, number % 2 == 0).Play();
    }
}

} // namespace sim::macos
